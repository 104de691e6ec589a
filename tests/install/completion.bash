# What bash offers for a command line of r2r. usage: completion.bash COMPLETION
source "$1"
compopt() { :; } # sets how bash shows what is offered; there is nothing to show here

cd "$(mktemp -d)" || exit 1
trap 'rm -rf "$PWD"' EXIT
touch 'two words.png' photo.png
mkdir pages

failed=0
# offers EXPECTED WORD...: the last word is the one that is being typed
offers() {
  local expected=$1
  shift
  COMP_WORDS=("$@")
  COMP_CWORD=$(($# - 1))
  _r2r
  local offered
  offered=$(printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | paste -s -d '|')
  [[ $offered == "$expected" ]] && return
  echo "completion.bash: '$*' offers $offered, not $expected"
  failed=1
}

offers 'convert' r2r conv
offers 'decimate|keep|smooth' r2r convert --reduce ''
offers 'smooth' r2r convert --enlarge = s
offers 'bayer16|bayer2|bayer4|bayer8' r2r convert --matrix bay
offers 'pages' r2r convert --out-dir ''
offers '' r2r convert --size ''
offers '--keep-color' r2r convert --ke
offers 'two words.png' r2r convert photo.png t
offers 'pages|photo.png|two words.png' r2r convert --invert ''
offers 'matrices|methods' r2r list m
exit $failed
