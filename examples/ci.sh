#!/usr/bin/env bash
# A job for continuous integration: can the definition files be deployed, and does the dictionary
# that tav.conf names hold what they say?
#
#   ci.sh FILE...    exit status 0: it does, 1: there is something to deploy, 2: the files have errors
set -u

findings=$(mktemp)
trap 'rm -f "$findings"' EXIT

# A conflict is a class that the dictionary has already, changed or not: diff tells which.
case $(tav_deploy verify "$@" 2>"$findings") in
  "No Conflicts detected" | "Conflicts detected") ;;
  *)
    tav_dict explain <"$findings"
    exit 2
    ;;
esac
tav_dict diff "$@"
