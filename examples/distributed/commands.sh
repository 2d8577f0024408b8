#!/bin/sh
# The commands of docs/scale-out.md, as the tests run them: in a folder with responses/*.jsonl.
set -eu

# ---- Dask: the workers of this machine
examples/distributed/dask_batch.py --out answers --workers 2 responses/*.jsonl
cat answers/part-*.jsonl > answers.jsonl

# ---- Dask: a cluster
dask-scheduler --port 0 --no-dashboard --scheduler-file cluster.json &
scheduler=$!
dask-worker --scheduler-file cluster.json --nworkers 2 --nthreads 1 --no-dashboard &
worker=$!
# The scheduler is stopped however the worker ends.
trap 'kill "$worker" || true; wait "$worker" || true; kill "$scheduler"' EXIT
examples/distributed/dask_batch.py --scheduler cluster.json --out cluster-answers \
  responses/*.jsonl -- --blocked-categories IAB7
cat cluster-answers/part-*.jsonl > cluster-answers.jsonl

# ---- GNU parallel
cat responses/*.jsonl | examples/distributed/parallel_batch.sh > parallel-answers.jsonl

cat responses/*.jsonl |
  parallel --pipe --keep-order --block 16M 'tamzo-vast batch -j 1 2>/dev/null' > plain-answers.jsonl
