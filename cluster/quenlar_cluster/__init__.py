"""Runs `quenlar collect` and `quenlar harvest` on many machines, with Dask.distributed as the engine.

A run lives in one folder that all machines share. The coordinator (`collect.py`, `harvest.py`) divides the work into
tasks; a worker does a task (`collect_task.py`, `harvest_task.py`) by running the program `quenlar`, and leaves its
result in the folder as a part. A part that is there is never made again, so everything may be killed at any moment
and started anew by the same command.
"""
