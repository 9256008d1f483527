#!/usr/bin/env bash
# A git hook that refuses commits of definition files that are not laid out, or are broken:
#   cp pre-commit.sh .git/hooks/pre-commit
# It looks at what would be committed, which may differ from what stands in the working folder.
set -uo pipefail
status=0
while IFS= read -r -d '' file; do
  git show ":$file" | tav_dict format --check --stdin-filename "$file"
  found=${PIPESTATUS[1]}
  [ "$found" -le "$status" ] || status=$found
done < <(git diff --cached --name-only --diff-filter=d -z -- '*.def')
case $status in
  0) ;;
  1) echo "Lay them out with 'tav_dict format -w FILE', then 'git add FILE'." >&2 ;;
  *) echo "What is told above must be mended first." >&2 ;;
esac
exit "$status"
