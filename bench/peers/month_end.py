"""The month-end listing as a script has it: where the values come from and how the cells look.

What the scripts of the two libraries share, so that they differ in the library only. They read the analysis
records as an engine that stores them leaves them (`excelexp_bench --month-end=FILE --records=stored`)."""

import sqlite3
import sys
from typing import Iterator, NamedTuple

SHEET = "Payroll"
FIRST_ROW = 6
TITLE_ROW = 5
HEADING_ROWS = (1, 2, 3, 4)
TITLE_HEIGHT = 14  # points
ROW_HEIGHT = 13
MONTHS = (10, 11, 12)


class Style(NamedTuple):
    """How a cell looks. The colour is that of the palette: its number in .xls files and as RGB."""
    colour: int
    rgb: str
    width: int  # characters
    bold: bool = False
    italic: bool = False
    accounting_underline: bool = False


STYLES = {
    "Title": Style(8, "#000000", 12),
    "Body": Style(8, "#000000", 16),
    "Name": Style(8, "#000000", 26),
    "Amount": Style(8, "#000000", 12),
    "Deduct": Style(16, "#800000", 12),
    "Total": Style(18, "#000080", 13, bold=True, accounting_underline=True),
    "Note": Style(23, "#808080", 12, italic=True),
}
AMOUNT_FORMAT = "#,0.00;-#,0.00"
COUNT_FORMAT = "General"


class Column(NamedTuple):
    """A column of figures: which record it shows, in which of the record's fields the value stands, and how."""
    item: str
    item_type: str
    title: str
    style: str
    field: str = "AnlysAmount1"
    number_format: str = AMOUNT_FORMAT


MAIN_COLUMNS = [("EmployeeId", "Body"), ("EmployeeName", "Name"), ("PositionDesc", "Body"), ("DepartmentDesc", "Body")]
COLUMNS = [
    Column("BASIC", "PayElement", "PayElementAmt", "Amount"),
    Column("BasicPay", "PaySystem", "BasicPay", "Amount"),
    Column("TotalAllowance", "PaySystem", "TotalAllowance", "Amount"),
    Column("OvertimePay", "PaySystem", "OvertimePay", "Amount"),
    Column("ShiftPay", "PaySystem", "ShiftPay", "Amount"),
    Column("TotalReimbursement", "PaySystem", "TotalReimbursement", "Amount"),
    Column("GrossWage", "PaySystem", "GrossWage", "Total"),
    Column("PENSION", "Deduction", "DeductionAmt", "Deduct"),
    Column("TotalDeduction", "PaySystem", "TotalDeduction", "Deduct"),
    Column("NetWage", "PaySystem", "NetWage", "Total"),
    Column("WorkingDays", "PaySystem", "WorkingDays", "Note", "AnlysAmount2"),
    Column("PayHeadCount", "PaySystem", "PayHeadCount", "Note", "AnlysCount1", COUNT_FORMAT),
]

EMPLOYEES = """
SELECT EmployeeSysId, EmployeeId, EmployeeName, PositionDesc, DepartmentDesc
FROM Employee JOIN Personal ON Personal.PersonalSysId = Employee.PersonalSysId
     LEFT JOIN Position ON Position.PositionId = Employee.PositionId
     LEFT JOIN Department ON Department.DepartmentId = Employee.DepartmentId
ORDER BY CAST(EmployeeSysId AS TEXT)"""

RECORDS = """
SELECT Basis1Id, AnlysItemRecPeriodMonth, AnlysItem1Id, AnlysItemTypeId, AnlysAmount1, AnlysAmount2, AnlysCount1
FROM AnlysItemRecord
     JOIN AnlysDispSection ON AnlysDispSection.AnlysDispSectionId = AnlysItemRecord.AnlysDispSectionId
     JOIN AnlysItemSetup ON AnlysItemSetup.AnlysItemSetupId = AnlysDispSection.AnlysItemSetupId
WHERE AnlysProjectId = 'MONTHEND' AND AnlysIPAddress = 'stored_1' AND AnlysPayRecBasis = 'Normal'"""
RECORD_FIELDS = ("AnlysAmount1", "AnlysAmount2", "AnlysCount1")


def headings(month: int) -> tuple:
    """The texts above the columns of a month, top down."""
    return "Year 2024", f"Period {month}", "", "Normal"


def rows(database: str) -> Iterator[tuple]:
    """The four texts and the 36 figures of each employee, in the order of the listing."""
    connection = sqlite3.connect(database)
    places = {(month, column.item, column.item_type): (at * len(COLUMNS) + i, RECORD_FIELDS.index(column.field))
              for at, month in enumerate(MONTHS) for i, column in enumerate(COLUMNS)}
    figures: dict = {}
    for employee, month, item, item_type, *fields in connection.execute(RECORDS):
        line = figures.get(employee)
        if line is None:
            line = figures[employee] = [0.0] * (len(MONTHS) * len(COLUMNS))
        place, field = places[month, item, item_type]
        line[place] = fields[field]
    for employee, *texts in connection.execute(EMPLOYEES):
        line = figures.get(str(employee))
        if line is not None:
            yield texts, line


def files() -> tuple:
    """The database and the workbook that the command line names."""
    if len(sys.argv) != 3:
        raise SystemExit(f"usage: {sys.argv[0]} DATABASE WORKBOOK")
    return sys.argv[1], sys.argv[2]
