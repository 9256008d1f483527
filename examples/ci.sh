#!/usr/bin/env bash
# Two jobs for continuous integration, with the dictionary that tav.conf names. The first says what is
# wrong with definition files and what deploying them would do, and keeps that as a plan. When
# somebody has reviewed it, the second does exactly that, or nothing where the dictionary changed.
#
#   ci.sh plan PLAN FILE...    exit status 0: nothing to deploy, 1: there is something, 2: errors
#   ci.sh apply PLAN           exit status 0: done, 1: make the plan anew, 2: errors
#
# Keep PLAN as the first job's artifact. What drops entries or makes a LENGTH shorter must be allowed:
# ci.sh apply PLAN --allow-destructive
set -u

# Notes are left out: which classes change, the plan tells.
lint() {
  tav_dict lint --against . --level warning "$@"
}

plan() {
  local plan=$1 form=text
  shift
  # GitHub makes annotations of what is printed, GitLab of a report: in .gitlab-ci.yml name it under
  # artifacts, reports, codequality.
  [ "${GITHUB_ACTIONS:-}" != true ] || form=github
  [ "${GITLAB_CI:-}" != true ] || lint --format gitlab --output gl-code-quality-report.json "$@" ||
    [ $? = 1 ] || exit 2
  lint --format "$form" "$@" || exit 2
  tav_dict plan --output "$plan" "$@"
}

case ${1:-} in
  plan) shift; plan "$@" ;;
  apply) shift; tav_dict apply --yes "$@" ;;
  *) echo "usage: ${0##*/} plan PLAN FILE... | apply PLAN" >&2; exit 2 ;;
esac
