#!/usr/bin/env bash
# Runs the notebooks of python/notebooks; a cell that fails, or an output that was committed, is an error.
#
#   python/tests/runNotebooks.sh [NAME...]    all of them, or those named
#
# It needs nbconvert and a kernel (python3-nbconvert, python3-ipykernel), matplotlib and OpenCV. Libraries and program
# are those of ZELM_LIBRARY_PATH, else of build/gcc.
set -euo pipefail
cd "$(dirname "$0")/../.."
export ZELM_LIBRARY_PATH=${ZELM_LIBRARY_PATH:-$PWD/build/gcc:$PWD/build/gcc/measure}
export PYTHONPATH=$PWD/python PYTHONDONTWRITEBYTECODE=1 PYDEVD_DISABLE_FILE_VALIDATION=1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR=$work IPYTHONDIR=$work/ipython JUPYTER_RUNTIME_DIR=$work/runtime
seconds=300 # that a cell may take

if grep -lE '"(execution_count)": [0-9]|"output_type"' python/notebooks/*.ipynb; then
  echo "runNotebooks: these have outputs; commit notebooks without" >&2
  exit 1
fi
names=("$@")
if [ ${#names[@]} -eq 0 ]; then
  for notebook in python/notebooks/*.ipynb; do
    names+=("$(basename "$notebook" .ipynb)")
  done
fi
for name in "${names[@]}"; do
  # Where the notebook stands, as it names files from there.
  (cd python/notebooks && /usr/bin/python3 -m nbconvert --to notebook --execute --log-level WARN \
    --ExecutePreprocessor.timeout=$seconds --output-dir "${NOTEBOOK_OUTPUT:-$work}" "$name.ipynb")
  echo "$name runs"
done
