# Sourced by test.sh, with the project's root as the current folder: what the tests find in their
# environment.
export LC_ALL=C.UTF-8

# Tests that need sample files are skipped where ORVPAP_SHARED does not say where these are and no
# folder beside the project holds any.
for samples in ../*/jet/samples; do
  if [[ -z ${ORVPAP_SHARED:-} && -d $samples ]]; then
    ORVPAP_SHARED=$(cd "$samples/../.." && pwd)
    export ORVPAP_SHARED
  fi
done
if [[ -z ${ORVPAP_JETCHECK:-} && -f ${ORVPAP_SHARED:-}/jet/jetcheck.py ]]; then
  export ORVPAP_JETCHECK=$ORVPAP_SHARED/jet/jetcheck.py
fi

# Before a command: hides this machine's proxy, which would answer for servers that are not there.
without_proxy=(env)
for name in http_proxy https_proxy all_proxy no_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY NO_PROXY; do
  without_proxy+=(-u "$name")
done
