#!/usr/bin/env python3
"""xlsx_readback.py TEST_BINARY: the .xlsx fixtures, read by openpyxl, hold what the model held."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from checks import compare_fixtures  # noqa: E402
from readers import XlsxBook  # noqa: E402

sys.exit(compare_fixtures(sys.argv[1], ".xlsx", XlsxBook))
