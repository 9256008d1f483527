#!/usr/bin/env bash
# A git hook that refuses commits of definition files that are not laid out, or are broken:
#   cp pre-commit.sh .git/hooks/pre-commit
# It looks at what would be committed, which may differ from what stands in the working folder.
set -uo pipefail
status=0
while IFS= read -r -d '' file; do
  git show ":$file" | tav_dict format --check --stdin-filename "$file" || status=1
done < <(git diff --cached --name-only --diff-filter=d -z -- '*.def')
[ "$status" = 0 ] || echo "Lay them out with 'tav_dict format -w FILE', then 'git add FILE'." >&2
exit "$status"
