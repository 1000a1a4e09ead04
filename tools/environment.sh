# Sourced by test.sh and .ci/run, with the project's root as the current folder: what the tests find
# in their environment.
export LC_ALL=C.UTF-8

# Tests that need the sample files kept beside the project are skipped where they are absent.
if [[ -z ${ORVPAP_SHARED:-} && -d ../shared/jet ]]; then
  ORVPAP_SHARED=$(cd ../shared && pwd)
  export ORVPAP_SHARED
fi
if [[ -z ${ORVPAP_JETCHECK:-} && -f ${ORVPAP_SHARED:-}/jet/jetcheck.py ]]; then
  export ORVPAP_JETCHECK=$ORVPAP_SHARED/jet/jetcheck.py
fi
