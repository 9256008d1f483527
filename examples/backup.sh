#!/usr/bin/env bash
# Checks the dictionary that tav.conf names, backs it up into a file that bears the time, and removes
# the oldest backups. While the check finds anything, or fails, no backup is removed.
#
#   backup.sh FOLDER [KEEP]    keeps the newest KEEP backups of FOLDER, 14 unless told
#
# Exit status: 0 all is well; 1 the check found something (it is on standard output); 2 there is no new
# backup, or nothing could be checked.
set -u
export LC_ALL=C

folder=${1:-}
keep=${2:-14}
if [ -z "$folder" ] || ! [[ $keep =~ ^[1-9][0-9]{0,5}$ ]]; then
  echo "Usage: backup.sh FOLDER [KEEP]" >&2
  exit 2
fi
umask 077
mkdir -p -- "$folder" || exit 2

tav_dict check
status=$?
tav_dict backup "$folder/dictionary-$(date -u +%Y-%m-%dT%H%M%SZ).db" || exit 2
[ $status -eq 0 ] || exit $status

# The names are in the order of time.
backups=("$folder"/dictionary-????-??-??T??????Z.db)
for ((i = 0; i < ${#backups[@]} - keep; i++)); do
  echo "Removed backup ${backups[i]}."
  rm -f -- "${backups[i]}" "${backups[i]}-wal" "${backups[i]}-shm" || exit 2
done
