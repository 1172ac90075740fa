#!/usr/bin/python3
"""Sums up what gcov found of the lines of one folder: coverage.py FOLDER [-v] GCOV_JSON_GZ..."""
import collections
import gzip
import json
import os
import sys

LEAST = 95

folder = os.path.realpath(sys.argv[1])
arguments = sys.argv[2:]
verbose = '-v' in arguments
runs = collections.defaultdict(lambda: collections.defaultdict(int))
for report in arguments:
    if report == '-v':
        continue
    with gzip.open(report) as file:
        for source in json.load(file)['files']:
            path = os.path.realpath(source['file'])
            if os.path.dirname(path) == folder:
                for line in source['lines']:
                    runs[path][line['line_number']] += line['count']

total = covered = 0
for path, lines in sorted(runs.items()):
    missed = sorted(number for number, count in lines.items() if count == 0)
    total += len(lines)
    covered += len(lines) - len(missed)
    print(f'{len(lines) - len(missed):5} of {len(lines):4}  {os.path.basename(path)}')
    if verbose and missed:
        print('              not reached:', *missed)
percentage = 100 * covered / total
print(f'{covered} of {total} lines, {percentage:.1f}%')
sys.exit(percentage < LEAST)
