"""A reader a format: each has `differences(report, outputs)`, which reads the format's file and yields a text for each
difference from the JSON report of the same run.

`outputs` holds the files of the run (collect.py); `report` is the JSON report as json.loads gives it. A reader reads its file by
means that the program has no part in, and compares everything that the format is documented to hold."""
