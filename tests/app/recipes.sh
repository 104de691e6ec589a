#!/bin/sh
# Runs the recipes of docs/many-images.md as they are printed there, with two hosts that are this machine under
# two names, and compares what they make with what one call makes. Arguments: the document, the command.
set -eu
command -v parallel >/dev/null || { echo "GNU parallel is not installed"; exit 77; }

document=$(realpath "$1")
command=$(realpath "$2")
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$place"

fail() { echo "$1" >&2; exit 1; }
recipe() { awk -v mark="<!-- recipe: $1 -->" '$0 == mark {found = 1} /^```/ && found {if (inside) exit; inside = 1; next} inside' "$document"; }

# A host is reached by ssh: this one notes the name and runs the words here. As on any login SHELL is set, which
# a service that runs these tests may not do.
mkdir bin scans
ln -s "$command" bin/r2r
cat >bin/ssh <<'END'
#!/bin/sh
while [ $# -gt 0 ] && [ "${1#-}" != "$1" ]; do shift; done
host=$1
shift
[ "$1" != -- ] || shift
echo "$host" >>"$PLACE/hosts"
exec sh -c "$*"
END
chmod +x bin/ssh
export PLACE="$place" PATH="$place/bin:$PATH" HOME="$place" PARALLEL_HOME="$place" SHELL=/bin/sh
: >will-cite

i=0
while [ $i -lt 100 ]; do
  printf 'P2 3 2 255 %s 9 200 77 130 %s' $i $((200 - i)) >"scans/s$i.pnm"
  r2r convert "scans/s$i.pnm" "scans/s $i.png"
  i=$((i + 1))
done
find scans -name '*.png' | sort >list.txt
r2r convert --files-from list.txt --out-dir want --depth 1

recipe hosts >hosts.sh
grep -q sshlogin hosts.sh || fail "the recipe for several hosts is missing"
printf broken >"scans/s 7.png"
! sh hosts.sh 2>errors || fail "a bad image went unnoticed"
[ "$(sort -u hosts | tr '\n' ' ')" = "alpha beta " ] || fail "not both hosts were used: $(sort -u hosts)"
[ "$(ls out | wc -l)" = 99 ] || fail "the other images were not converted: $(cat errors)"
r2r convert scans/s7.pnm "scans/s 7.png" --force
: >hosts
sh hosts.sh
[ "$(wc -l <hosts)" -le 2 ] || fail "more was run again than the call that failed"
diff -r want out

recipe array >array.sh
grep -q shard array.sh || fail "the recipe for a job array is missing"
rm -r out
for task in 1 2 3 4 5 6 7 8; do SLURM_ARRAY_TASK_ID=$task sh array.sh; done
diff -r want out
[ "$(cat report-?.jsonl | wc -l)" = 100 ] || fail "the reports do not tell of every image once"
