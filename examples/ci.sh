#!/usr/bin/env bash
# A job for continuous integration: what is wrong with definition files, and what would deploying them
# change in the dictionary that tav.conf names?
#
#   ci.sh FILE...    exit status 0: nothing, 1: there is something to deploy, 2: the files have errors
set -u

# Notes are left out: what the dictionary has already, changed or not, is no news here.
lint() {
  tav_dict lint --against . --level warning "$@"
}

# GitHub makes annotations of what is printed, GitLab of a report: in .gitlab-ci.yml name it under
# artifacts, reports, codequality.
form=text
[ "${GITHUB_ACTIONS:-}" != true ] || form=github
[ "${GITLAB_CI:-}" != true ] || lint --format gitlab --output gl-code-quality-report.json "$@" ||
  [ $? = 1 ] || exit 2
lint --format "$form" "$@" || exit 2
tav_dict diff "$@"
