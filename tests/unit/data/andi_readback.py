#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads an ANDI-MS file with scipy's own netCDF reader and compares it with the expected run
(a JSON file: times in s, per-scan masses and intensities, sample, time stamp). Exit 0 when every
value is equal, 1 with the differences otherwise."""
import json
import sys

import numpy
from scipy.io import netcdf_file


def main(cdf_path, expected_path):
    with open(expected_path) as f:
        expected = json.load(f)
    problems = []
    with netcdf_file(cdf_path, "r", mmap=False) as cdf:
        v = cdf.variables
        times = v["scan_acquisition_time"].data
        index = v["scan_index"].data
        count = v["point_count"].data
        masses = v["mass_values"].data
        intensities = v["intensity_values"].data
        totals = v["total_intensity"].data
        if v["mass_values"].typecode() != "f" or v["intensity_values"].typecode() != "f":
            problems.append("points are not stored as float")
        if len(times) != len(expected["scans"]):
            problems.append(f"{len(times)} scans, expected {len(expected['scans'])}")
        for i, scan in enumerate(expected["scans"][: len(times)]):
            if times[i] != scan["time"]:
                problems.append(f"scan {i + 1}: time {times[i]!r} != {scan['time']!r}")
            got_mz = masses[index[i] : index[i] + count[i]]
            got_int = intensities[index[i] : index[i] + count[i]]
            if not numpy.array_equal(got_mz, numpy.array(scan["mz"], dtype=numpy.float32)):
                problems.append(f"scan {i + 1}: masses {list(got_mz)} != {scan['mz']}")
            if not numpy.array_equal(got_int, numpy.array(scan["intensity"], dtype=numpy.float32)):
                problems.append(f"scan {i + 1}: intensities {list(got_int)} != {scan['intensity']}")
            if totals[i] != numpy.float32(scan["tic"]):
                problems.append(f"scan {i + 1}: total {totals[i]!r} != {scan['tic']!r}")
        attributes = {
            "dataset_completeness": "C1+C2",
            "ms_template_revision": "1.0.1",
            "experiment_title": expected["sample"],
            "experiment_date_time_stamp": expected["stamp"],
            "test_ionization_mode": "Electron Impact",
            "raw_data_mass_format": "Float",
            "raw_data_intensity_format": "Float",
            "units": "Seconds",
        }
        for name, value in attributes.items():
            got = getattr(cdf, name, b"").decode("utf-8")
            if got != value:
                problems.append(f"attribute {name}: {got!r} != {value!r}")
    for problem in problems[:20]:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
