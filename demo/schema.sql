-- The schema of the report export engine: every table and column it reads, the rows no database can do
-- without, and the setup views that shape payroll data into analysis records.
--
--   sqlite3 new.db < demo/schema.sql        gives an empty, usable database.
--
-- Rules that hold for every table here:
--   * A join that the engine writes without ON follows the one foreign key between the tables; such pairs
--     share no column name but the key, so that a bare name is never ambiguous.
--   * Texts that a report compares with = are never NULL: an empty value is ''.
--   * Amounts are in the currency of the company, dates are texts 'yyyy-mm-dd', moments 'yyyy-mm-dd hh:mm:ss'.

-- ---------------------------------------------------------------- settings and functions of the database

CREATE TABLE SystemParameter (
  ParameterId varchar(40) NOT NULL PRIMARY KEY,
  ParameterValue varchar(255) NOT NULL DEFAULT ''
);

-- Scalar functions that report SQL calls by name: one SELECT each, ?1 and ?2 are the arguments.
CREATE TABLE DatabaseFunction (
  FunctionName varchar(128) NOT NULL PRIMARY KEY COLLATE NOCASE,
  ArgumentCount integer NOT NULL,
  FunctionSql varchar(16000) NOT NULL
);

-- What users call a table's column; a basis in a user log goes by this name.
CREATE TABLE SystemAttribute (
  SysTableId varchar(128) NOT NULL,
  SysAttributeId varchar(128) NOT NULL,
  SysUserdefinedName varchar(128) NOT NULL,
  PRIMARY KEY (SysTableId, SysAttributeId)
);

CREATE TABLE KeyWord (
  KeyWordId varchar(40) NOT NULL PRIMARY KEY,
  KeywordCategory varchar(40) NOT NULL,
  KeywordDesc varchar(80) NOT NULL DEFAULT ''
);
CREATE INDEX KeyWordByCategory ON KeyWord (KeywordCategory);

-- ---------------------------------------------------------------- cell formatting

-- The spreadsheet's palette: a font colour by name and its index in the application (1 to 56).
CREATE TABLE ColourCodeMapping (
  ColourCodeId varchar(40) NOT NULL PRIMARY KEY,
  ColourCodeIndex integer NOT NULL
);

CREATE TABLE ExcelExpKeyword (
  ExcelExpKeywordId varchar(40) NOT NULL PRIMARY KEY,
  ExcelExpKeywordCategory varchar(40) NOT NULL DEFAULT '',
  ExcelExpKeywordRef integer NOT NULL
);

CREATE TABLE ColourScheme (
  ColourSchemeId varchar(40) NOT NULL PRIMARY KEY,
  ColourSchemeDesc varchar(80) NOT NULL DEFAULT '',
  ColourCodeId varchar(40) REFERENCES ColourCodeMapping (ColourCodeId),
  ColourSchFont varchar(80) NOT NULL DEFAULT 'Arial',
  ColourSchSize integer NOT NULL DEFAULT 9,                  -- points
  ColourSchFontStyle varchar(20) NOT NULL DEFAULT 'FontRegular',
  ColourSchUnderline varchar(40) NOT NULL DEFAULT 'UnderlineNone'
    REFERENCES ExcelExpKeyword (ExcelExpKeywordId),
  ColourSchStrikethrough integer NOT NULL DEFAULT 0,
  ColourSchSuperscript integer NOT NULL DEFAULT 0,
  ColourSchSubscript integer NOT NULL DEFAULT 0,
  ColourSchCellWidth integer NOT NULL DEFAULT 12,            -- characters
  ColourSchCellHeight integer NOT NULL DEFAULT 14            -- points
);

-- ---------------------------------------------------------------- spreadsheet definitions

CREATE TABLE ExcelSpreadsheet (
  ExcelSpreadsheetId varchar(40) NOT NULL PRIMARY KEY,
  ExcelSpreadsheetDesc varchar(120) NOT NULL DEFAULT '',
  ExcelRptFileName varchar(120) NOT NULL DEFAULT ''          -- without extension
);

CREATE TABLE ExcelWkSheet (
  WkSheetSysId integer NOT NULL PRIMARY KEY,
  ExcelSpreadsheetId varchar(40) NOT NULL REFERENCES ExcelSpreadsheet (ExcelSpreadsheetId),
  WkSheetOrder integer NOT NULL,
  WkSheetName varchar(31) NOT NULL,
  WkSheetRptSumLvl varchar(20) NOT NULL DEFAULT '',          -- SumLevelEmpee, SumLevelCompany, SumLevelBasis
  WkSheetRptBasis1 varchar(40) NOT NULL DEFAULT '',          -- AnlysKeyword ids
  WkSheetRptBasis2 varchar(40) NOT NULL DEFAULT '',
  WkSheetRptBasis3 varchar(40) NOT NULL DEFAULT '',
  WkSheetTitleColourSchemeId varchar(40) NOT NULL DEFAULT 'DefColourScheme'
    REFERENCES ColourScheme (ColourSchemeId),
  WkSheetHasRptHeader integer NOT NULL DEFAULT 0,
  WkSheetHasRptFooter integer NOT NULL DEFAULT 0,
  WkSheetHeadColourSchemeId varchar(40) NOT NULL DEFAULT 'DefColourScheme'
    REFERENCES ColourScheme (ColourSchemeId),
  WkSheetFootColourSchemeId varchar(40) NOT NULL DEFAULT 'DefColourScheme'
    REFERENCES ColourScheme (ColourSchemeId),
  WkSheetRptHeader blob,                                     -- text; tokens <Date>, <Time>, <DateTime>
  WkSheetRptFooter blob
);
CREATE INDEX ExcelWkSheetOfSpreadsheet ON ExcelWkSheet (ExcelSpreadsheetId, WkSheetOrder);

CREATE TABLE ExcelWkSheetItem (
  WkSheetItemSysId integer NOT NULL PRIMARY KEY,
  WkSheetSysId integer NOT NULL REFERENCES ExcelWkSheet (WkSheetSysId),
  WkSheetItemOrdering integer NOT NULL,
  WkSheetItemRptType varchar(20) NOT NULL,                   -- FinancialRpt, EmployeeRpt
  WkSheetItemRptId varchar(40) NOT NULL                      -- FinancialRpt or EmployeeRpt
);
CREATE INDEX ExcelWkSheetItemOfSheet ON ExcelWkSheetItem (WkSheetSysId, WkSheetItemOrdering);

-- The period range of an item's data; for a leave balance the as-of day as year, month, day.
CREATE TABLE ExcelWSItemRptOpts (
  WkSheetItemSysId integer NOT NULL PRIMARY KEY REFERENCES ExcelWkSheetItem (WkSheetItemSysId),
  WSItemFromYear integer NOT NULL DEFAULT 0,
  WSItemFromMthPeriod integer NOT NULL DEFAULT 0,
  WSItemFromSubPeriod integer NOT NULL DEFAULT 0,
  WSItemToYear integer NOT NULL DEFAULT 0,
  WSItemToMthPeriod integer NOT NULL DEFAULT 0,
  WSItemToSubPeriod integer NOT NULL DEFAULT 0
);

-- The pay periods that an item prints; none means those found in the data.
CREATE TABLE ExcelWSItemRptLayout (
  WkSheetItemSysId integer NOT NULL REFERENCES ExcelWkSheetItem (WkSheetItemSysId),
  WSRptLayoutOrder integer NOT NULL,
  WSRptLayoutYear integer NOT NULL,
  WSRptLayoutMthPeriod integer NOT NULL DEFAULT 0,
  WSRptLayoutSubPeriod integer NOT NULL DEFAULT 0,
  WSRptLayoutPayRecIdType varchar(40) NOT NULL DEFAULT '',
  PRIMARY KEY (WkSheetItemSysId, WSRptLayoutOrder)
);

-- ---------------------------------------------------------------- financial report definitions

CREATE TABLE AnlysBasisPolicy (
  AnlysBasisPolicyId varchar(40) NOT NULL PRIMARY KEY,
  AnlysBasisPolicyDesc varchar(80) NOT NULL DEFAULT ''
);

-- Ranges of a policy: from <= value < to.
CREATE TABLE AnlysPolicyRange (
  AnlysBasisPolicyId varchar(40) NOT NULL REFERENCES AnlysBasisPolicy (AnlysBasisPolicyId),
  AnlysPolicyRangeCode varchar(40) NOT NULL,
  AnlysPolicyRangeFrom double NOT NULL,
  AnlysPolicyRangeTo double NOT NULL,
  PRIMARY KEY (AnlysBasisPolicyId, AnlysPolicyRangeCode)
);

-- A basis level: the table of its values (or a Dummy_Basis... pseudo-table) and that table's key column.
CREATE TABLE AnlysKeyword (
  AnlysKeywordId varchar(40) NOT NULL PRIMARY KEY,
  AnlysKeywordRef varchar(128) NOT NULL,
  AnlysKeywordTableId varchar(128) NOT NULL
);

CREATE TABLE AnlysProject (
  AnlysProjectId varchar(40) NOT NULL PRIMARY KEY,
  AnlysProjectDesc varchar(120) NOT NULL DEFAULT '',
  AnlysProjectType varchar(40) NOT NULL DEFAULT '',
  AnlysProjectSubType varchar(40) NOT NULL DEFAULT 'ProjSubTypePayRec',
  AnlysSetupId varchar(128) NOT NULL DEFAULT '',             -- table or view the records are copied from
  CycleMethod varchar(40) NOT NULL DEFAULT '',
  CycleGroupBy varchar(40) NOT NULL DEFAULT '',
  CycleSubGroupBy varchar(40) NOT NULL DEFAULT '',
  IsSystemProject integer NOT NULL DEFAULT 0,
  SummaryLevel varchar(20) NOT NULL DEFAULT 'SumLevelEmpee',
  Basis1 varchar(40) NOT NULL DEFAULT '',
  Basis2 varchar(40) NOT NULL DEFAULT '',
  Basis3 varchar(40) NOT NULL DEFAULT '',
  BasisPolicyId1 varchar(40) NOT NULL DEFAULT '',            -- policies of the range bases
  BasisPolicyId2 varchar(40) NOT NULL DEFAULT '',
  BasisPolicyId3 varchar(40) NOT NULL DEFAULT ''
);

CREATE TABLE FinancialRpt (
  FinancialRptId varchar(40) NOT NULL PRIMARY KEY,
  FinancialRptDesc varchar(120) NOT NULL DEFAULT '',
  FinancialAnalysProjId varchar(40) NOT NULL REFERENCES AnlysProject (AnlysProjectId),
  LayoutSchemeId varchar(40) NOT NULL,
  FinancialHasGrandTot integer NOT NULL DEFAULT 0,
  FinancialHasTotEmpCt integer NOT NULL DEFAULT 0
);

CREATE TABLE FinanceColItem (
  FinColItemSysId integer NOT NULL PRIMARY KEY,
  FinancialRptId varchar(40) NOT NULL REFERENCES FinancialRpt (FinancialRptId),
  FinColItemOrder integer NOT NULL,
  FinColItemType varchar(20) NOT NULL,      -- SummLvlItem, AnlysItem, CalculatedItem, BlankItem
  FinColItem varchar(40) NOT NULL DEFAULT '',
  FinColGrouping varchar(40) NOT NULL DEFAULT '',
  FinColComponent varchar(40) NOT NULL DEFAULT '',
  FinColItemTitle varchar(120) NOT NULL DEFAULT '',
  FinColExcelFormula varchar(4000) NOT NULL DEFAULT '',
  FinColIncAccuRange integer NOT NULL DEFAULT 0,
  FinColIsRptMainInfo integer NOT NULL DEFAULT 0,
  ColourSchemeId varchar(40) NOT NULL DEFAULT 'DefColourScheme' REFERENCES ColourScheme (ColourSchemeId)
);
CREATE INDEX FinanceColItemOfRpt ON FinanceColItem (FinancialRptId, FinColItemOrder);

CREATE TABLE FinColAccumulated (
  FinColItemSysId integer NOT NULL REFERENCES FinanceColItem (FinColItemSysId),
  FinColAccuYear integer NOT NULL,
  FinColAccuMthPeriod integer NOT NULL DEFAULT 0,
  FinColAccuSubPeriod integer NOT NULL DEFAULT 0,
  FinColAccuPayRecIdType varchar(40) NOT NULL DEFAULT '',   -- '' is every one
  PRIMARY KEY (FinColItemSysId, FinColAccuYear, FinColAccuMthPeriod, FinColAccuSubPeriod,
               FinColAccuPayRecIdType)
);

CREATE TABLE FinanceRowItem (
  FinRowItemSysId integer NOT NULL PRIMARY KEY,
  FinancialRptId varchar(40) NOT NULL REFERENCES FinancialRpt (FinancialRptId),
  FinRowItemOrder integer NOT NULL,
  FinRowItemType varchar(20) NOT NULL,      -- AnlysItem, CalculatedItem, BlankItem
  FinRowItem varchar(40) NOT NULL DEFAULT '',
  FinRowGrouping varchar(40) NOT NULL DEFAULT '',
  FinRowComponent varchar(40) NOT NULL DEFAULT '',
  FinRowItemTitle varchar(120) NOT NULL DEFAULT '',
  FinRowExcelFormula varchar(4000) NOT NULL DEFAULT '',
  ColourSchemeId varchar(40) NOT NULL DEFAULT 'DefColourScheme' REFERENCES ColourScheme (ColourSchemeId)
);
CREATE INDEX FinanceRowItemOfRpt ON FinanceRowItem (FinancialRptId, FinRowItemOrder);

CREATE TABLE FinanceGrpItem (
  FinGrpItemSysId integer NOT NULL PRIMARY KEY,
  FinancialRptId varchar(40) NOT NULL REFERENCES FinancialRpt (FinancialRptId),
  FinGrpItemOrder integer NOT NULL,         -- lower is outer
  FinGrpItemTitle varchar(120) NOT NULL DEFAULT '',
  FinGrpGrouping varchar(128) NOT NULL,
  FinGrpComponent varchar(128) NOT NULL,
  FinGrpHasSubTotal integer NOT NULL DEFAULT 0,
  FinGrpHasEmpCount integer NOT NULL DEFAULT 0,
  ColourSchemeId varchar(40) NOT NULL DEFAULT 'DefColourScheme' REFERENCES ColourScheme (ColourSchemeId)
);
CREATE INDEX FinanceGrpItemOfRpt ON FinanceGrpItem (FinancialRptId, FinGrpItemOrder);

CREATE TABLE FinanceSortItem (
  FinSortItemSysId integer NOT NULL PRIMARY KEY,
  FinancialRptId varchar(40) NOT NULL REFERENCES FinancialRpt (FinancialRptId),
  FinSortItemOrder integer NOT NULL,
  FinSortGrouping varchar(128) NOT NULL,
  FinSortComponent varchar(128) NOT NULL
);
CREATE INDEX FinanceSortItemOfRpt ON FinanceSortItem (FinancialRptId, FinSortItemOrder);

-- ---------------------------------------------------------------- employee report definitions

-- A report type: the pieces of its FROM clause.
CREATE TABLE ExcelEmpRpt (
  ExcelEmpRptId varchar(40) NOT NULL PRIMARY KEY,
  ExcelEmpRptTable1 varchar(500) NOT NULL,
  ExcelEmpRptTable2 varchar(500) NOT NULL DEFAULT '',
  ExcelEmpRptTable3 varchar(500) NOT NULL DEFAULT ''
);

CREATE TABLE EmployeeRpt (
  EmpInfoRptId varchar(40) NOT NULL PRIMARY KEY,
  EmpInfoRptDesc varchar(120) NOT NULL DEFAULT '',
  EmpInfoRptType varchar(40) NOT NULL REFERENCES ExcelEmpRpt (ExcelEmpRptId),
  EmployeeRptHasFilter integer NOT NULL DEFAULT 0,
  EmployeeRptFilterCond varchar(4000) NOT NULL DEFAULT '',
  EmployeeRptHasEmpOnly integer NOT NULL DEFAULT 1,
  EmployeeRptHasEmpCt integer NOT NULL DEFAULT 0
);

CREATE TABLE EmpColItem (
  EmpColItemSysId integer NOT NULL PRIMARY KEY,
  EmpInfoRptId varchar(40) NOT NULL REFERENCES EmployeeRpt (EmpInfoRptId),
  EmpColItemOrder integer NOT NULL,
  EmpColIsRptMainInfo integer NOT NULL DEFAULT 0,
  EmpColItemType varchar(20) NOT NULL DEFAULT '',           -- BlankItem is a spacer
  EmpColSysTableId varchar(128) NOT NULL DEFAULT '',
  EmpColSysAttributeId varchar(128) NOT NULL DEFAULT '',
  EmpColItemTitle varchar(120) NOT NULL DEFAULT '',
  ColourSchemeId varchar(40) NOT NULL DEFAULT 'DefColourScheme' REFERENCES ColourScheme (ColourSchemeId)
);
CREATE INDEX EmpColItemOfRpt ON EmpColItem (EmpInfoRptId, EmpColItemOrder);

CREATE TABLE EmpGrpItem (
  EmpGrpItemSysId integer NOT NULL PRIMARY KEY,
  EmpInfoRptId varchar(40) NOT NULL REFERENCES EmployeeRpt (EmpInfoRptId),
  EmpGrpItemOrder integer NOT NULL,
  EmpGrpSysTableId varchar(128) NOT NULL,
  EmpGrpSysAttributeId varchar(128) NOT NULL,
  EmpGrpItemTitle varchar(120) NOT NULL DEFAULT '',
  EmpGrpHasEmpCount integer NOT NULL DEFAULT 0,
  ColourSchemeId varchar(40) NOT NULL DEFAULT 'DefColourScheme' REFERENCES ColourScheme (ColourSchemeId)
);
CREATE INDEX EmpGrpItemOfRpt ON EmpGrpItem (EmpInfoRptId, EmpGrpItemOrder);

CREATE TABLE EmpSortItem (
  EmpSortItemSysId integer NOT NULL PRIMARY KEY,
  EmpInfoRptId varchar(40) NOT NULL REFERENCES EmployeeRpt (EmpInfoRptId),
  EmpSortItemOrder integer NOT NULL,
  EmpSortSysTableId varchar(128) NOT NULL,
  EmpSortSysAttributeId varchar(128) NOT NULL
);
CREATE INDEX EmpSortItemOfRpt ON EmpSortItem (EmpInfoRptId, EmpSortItemOrder);

-- ---------------------------------------------------------------- analysis records

-- An item type, e.g. 'PayElement'. A record finds its type through its display section.
CREATE TABLE AnlysItemSetup (
  AnlysItemSetupId varchar(40) NOT NULL PRIMARY KEY,
  AnlysItemTypeId varchar(40) NOT NULL
) WITHOUT ROWID;
CREATE INDEX AnlysItemSetupByType ON AnlysItemSetup (AnlysItemTypeId);

CREATE TABLE AnlysDispSection (
  AnlysDispSectionId varchar(40) NOT NULL PRIMARY KEY,
  AnlysDispSectionDesc varchar(80) NOT NULL DEFAULT '',
  AnlysItemSetupId varchar(40) NOT NULL REFERENCES AnlysItemSetup (AnlysItemSetupId)
) WITHOUT ROWID;
CREATE INDEX AnlysDispSectionOfSetup ON AnlysDispSection (AnlysItemSetupId);

-- Which column of the analysis record shows a component of an item type: the current value, and for
-- reconciliations the previous value and the variance ('' where there is none).
CREATE TABLE AnItemLookup (
  AnlysItemTypeId varchar(40) NOT NULL,
  AnlysLookupId varchar(40) NOT NULL,
  AnlysLookupDesc varchar(80) NOT NULL DEFAULT '',
  AnlysMapField varchar(40) NOT NULL,
  AnlysMapFieldPrev varchar(40) NOT NULL DEFAULT '',
  AnlysMapFieldVar varchar(40) NOT NULL DEFAULT '',
  PRIMARY KEY (AnlysItemTypeId, AnlysLookupId)
);

-- What an analysis engine gives before an item prints, and takes back afterwards. The engine that comes with the
-- system holds its rows in memory, with these columns, types and defaults; one that stores its rows stores them here.
-- AnlysIPAddress is the data key: workstation address, "_", ordering of the worksheet item.
CREATE TABLE AnlysItemRecord (
  AnlysProjectId varchar(40) NOT NULL,
  AnlysIPAddress varchar(80) NOT NULL,
  AnlysItemRecYear integer NOT NULL DEFAULT 0,
  AnlysItemRecPeriodMonth integer NOT NULL DEFAULT 0,
  AnlysItemRecSubPeriod integer NOT NULL DEFAULT 0,
  AnlysPayRecBasis varchar(40) NOT NULL DEFAULT '',
  Basis1Id varchar(40) NOT NULL DEFAULT '',
  Basis2Id varchar(40) NOT NULL DEFAULT '',
  Basis3Id varchar(40) NOT NULL DEFAULT '',
  AnlysDispSectionId varchar(40) NOT NULL DEFAULT '' REFERENCES AnlysDispSection (AnlysDispSectionId),
  AnlysItem1Id varchar(40) NOT NULL DEFAULT '',
  AnlysItem2Id varchar(40) NOT NULL DEFAULT '',
  AnlysItem3Id varchar(40) NOT NULL DEFAULT '',
  AnlysItem4Id varchar(40) NOT NULL DEFAULT '',
  AnlysItem5Id varchar(40) NOT NULL DEFAULT '',
  AnlysItemDesc varchar(120) NOT NULL DEFAULT '',
  AnlysLookUpId varchar(40) NOT NULL DEFAULT '',
  SysAttributeCountry varchar(40) NOT NULL DEFAULT '',
  AnlysAmount1 decimal(16, 2) NOT NULL DEFAULT 0,
  AnlysAmount2 decimal(16, 2) NOT NULL DEFAULT 0,
  AnlysFAmount1 decimal(16, 2) NOT NULL DEFAULT 0,
  AnlysFAmount2 decimal(16, 2) NOT NULL DEFAULT 0,
  AnlysDoubleValue1 double NOT NULL DEFAULT 0,
  AnlysDoubleValue2 double NOT NULL DEFAULT 0,
  AnlysDoubleValue3 double NOT NULL DEFAULT 0,
  AnlysCount1 integer NOT NULL DEFAULT 0,
  AnlysCount2 integer NOT NULL DEFAULT 0,
  AnlysCount3 integer NOT NULL DEFAULT 0,
  AnlysFlag1 smallint NOT NULL DEFAULT 0,
  AnlysText1 varchar(120) NOT NULL DEFAULT '',
  AnlysDate1 date,
  AnlysTime1 time,
  AnlysTimestamp1 timestamp
);
-- For stored rows: those of a data key, those of an entity, in the order in which rows in memory come too.
CREATE INDEX AnlysItemRecordByKey
  ON AnlysItemRecord (AnlysIPAddress, AnlysProjectId, Basis1Id, Basis2Id, Basis3Id);

-- ---------------------------------------------------------------- codes: an id and what it stands for

CREATE TABLE Company (CompanyId varchar(20) NOT NULL PRIMARY KEY, CompanyName varchar(120) NOT NULL,
                      CompanyRegistrationNo varchar(40) NOT NULL DEFAULT '') WITHOUT ROWID;
CREATE TABLE Branch (BranchId varchar(20) NOT NULL PRIMARY KEY, BranchDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE Category (CategoryId varchar(20) NOT NULL PRIMARY KEY, CategoryDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE CessationCode (CessationCodeId varchar(20) NOT NULL PRIMARY KEY, CessationDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE Classification (ClassificationId varchar(20) NOT NULL PRIMARY KEY, ClassificationDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE Department (DepartmentId varchar(20) NOT NULL PRIMARY KEY, DepartmentDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE Section (SectionId varchar(20) NOT NULL PRIMARY KEY, SectionDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE Position (PositionId varchar(20) NOT NULL PRIMARY KEY, PositionDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE SalaryGrade (SalaryGradeId varchar(20) NOT NULL PRIMARY KEY, SalaryGradeDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE EmpLocation1 (EmpLocation1Id varchar(20) NOT NULL PRIMARY KEY, EmpLocation1Desc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE EmpCode1 (EmpCode1Id varchar(20) NOT NULL PRIMARY KEY, EmpCode1Desc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE EmpCode2 (EmpCode2Id varchar(20) NOT NULL PRIMARY KEY, EmpCode2Desc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE EmpCode3 (EmpCode3Id varchar(20) NOT NULL PRIMARY KEY, EmpCode3Desc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE EmpCode4 (EmpCode4Id varchar(20) NOT NULL PRIMARY KEY, EmpCode4Desc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE EmpCode5 (EmpCode5Id varchar(20) NOT NULL PRIMARY KEY, EmpCode5Desc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE MaritalStatus (MaritalStatusId varchar(20) NOT NULL PRIMARY KEY, MaritalStatusDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE Race (RaceId varchar(20) NOT NULL PRIMARY KEY, RaceDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE Religion (ReligionId varchar(20) NOT NULL PRIMARY KEY, ReligionDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE Title (TitleId varchar(20) NOT NULL PRIMARY KEY, TitleDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE BloodGroup (BloodGroupId varchar(20) NOT NULL PRIMARY KEY, BloodGroupDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE IdentityType (IdentityTypeId varchar(20) NOT NULL PRIMARY KEY, IdentityTypeDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE PersonalType (PersonalTypeId varchar(20) NOT NULL PRIMARY KEY, PersonalTypeDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE CostCentre (CostCentreId varchar(20) NOT NULL PRIMARY KEY, CostCentreDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE ShiftTeam (ShiftTeamId varchar(20) NOT NULL PRIMARY KEY, ShiftTeamDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE JobCode (JobCodeId varchar(20) NOT NULL PRIMARY KEY, JobCodeDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE LeaveType (LeaveTypeId varchar(20) NOT NULL PRIMARY KEY, LeaveTypeDesc varchar(80) NOT NULL) WITHOUT ROWID;
CREATE TABLE MovementType (MovementTypeId varchar(20) NOT NULL PRIMARY KEY, MovementTypeDesc varchar(80) NOT NULL) WITHOUT ROWID;

-- ---------------------------------------------------------------- people

CREATE TABLE Personal (
  PersonalSysId integer NOT NULL PRIMARY KEY,
  PersonalName varchar(120) NOT NULL,
  IdentityNo varchar(40) NOT NULL DEFAULT '',
  IdentityTypeId varchar(20) REFERENCES IdentityType (IdentityTypeId),
  PersonalTypeId varchar(20) REFERENCES PersonalType (PersonalTypeId),
  Gender char(1) NOT NULL DEFAULT '',                        -- 1 male, 0 female
  DateOfBirth date,
  TitleId varchar(20) REFERENCES Title (TitleId),
  MaritalStatusId varchar(20) REFERENCES MaritalStatus (MaritalStatusId),
  RaceId varchar(20) REFERENCES Race (RaceId),
  ReligionId varchar(20) REFERENCES Religion (ReligionId),
  BloodGroupId varchar(20) REFERENCES BloodGroup (BloodGroupId),
  PersonalEmail varchar(120) NOT NULL DEFAULT ''
);

-- One employment of a person. Besides PersonalSysId no column has the name of one of Personal's.
CREATE TABLE Employee (
  EmployeeSysId integer NOT NULL PRIMARY KEY,
  PersonalSysId integer NOT NULL REFERENCES Personal (PersonalSysId),
  EmployeeId varchar(20) NOT NULL UNIQUE,
  EmployeeName varchar(120) NOT NULL,
  CompanyId varchar(20) NOT NULL REFERENCES Company (CompanyId),
  BranchId varchar(20) REFERENCES Branch (BranchId),
  DepartmentId varchar(20) REFERENCES Department (DepartmentId),
  SectionId varchar(20) REFERENCES Section (SectionId),
  PositionId varchar(20) REFERENCES Position (PositionId),
  CategoryId varchar(20) REFERENCES Category (CategoryId),
  ClassificationId varchar(20) REFERENCES Classification (ClassificationId),
  SalaryGradeId varchar(20) REFERENCES SalaryGrade (SalaryGradeId),
  EmpLocation1Id varchar(20) REFERENCES EmpLocation1 (EmpLocation1Id),
  EmpCode1Id varchar(20) REFERENCES EmpCode1 (EmpCode1Id),
  EmpCode2Id varchar(20) REFERENCES EmpCode2 (EmpCode2Id),
  EmpCode3Id varchar(20) REFERENCES EmpCode3 (EmpCode3Id),
  EmpCode4Id varchar(20) REFERENCES EmpCode4 (EmpCode4Id),
  EmpCode5Id varchar(20) REFERENCES EmpCode5 (EmpCode5Id),
  CessationCodeId varchar(20) REFERENCES CessationCode (CessationCodeId),
  HireDate date NOT NULL,
  ProbationMonths integer NOT NULL DEFAULT 0,
  ConfirmDate date,
  CessationDate date,
  PreviousSvcYear double NOT NULL DEFAULT 0,                 -- years served before HireDate that count
  BasicRateType varchar(40) REFERENCES KeyWord (KeyWordId),  -- category 'Basic Rate Type'
  BasicRate decimal(12, 2) NOT NULL DEFAULT 0,
  CPFMAWOption smallint NOT NULL DEFAULT 0,                  -- -1, 0, 1
  IsUnionMember smallint NOT NULL DEFAULT 0,
  WorkStartTime time,
  RecordUpdated timestamp
);
CREATE INDEX EmployeeOfPersonal ON Employee (PersonalSysId, HireDate);
CREATE INDEX EmployeeOfCompany ON Employee (CompanyId, DepartmentId, SectionId);
CREATE INDEX EmployeeOfDepartment ON Employee (DepartmentId, SectionId);

-- The employees and persons a user may see: this one shows everybody. A security module makes others.
CREATE VIEW ViewEmployee AS
  SELECT Employee.EmployeeSysId AS EmployeeSysId, Personal.PersonalSysId AS PersonalSysId
  FROM Personal LEFT JOIN Employee ON Employee.PersonalSysId = Personal.PersonalSysId;

CREATE TABLE Family (
  FamilySysId integer NOT NULL PRIMARY KEY,
  PersonalSysId integer NOT NULL REFERENCES Personal (PersonalSysId),
  FamilyMemberName varchar(120) NOT NULL,
  FamilyRelation varchar(40) NOT NULL,
  FamilyBirthDate date,
  Gender char(1) NOT NULL DEFAULT ''
);
CREATE INDEX FamilyOfPersonal ON Family (PersonalSysId);

CREATE TABLE EmployeeCareer (
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  CareerEffectiveDate date NOT NULL,
  CareerCurrent integer NOT NULL DEFAULT 0,
  CareerPositionId varchar(20) REFERENCES Position (PositionId),
  CareerBasicRate decimal(12, 2) NOT NULL DEFAULT 0,
  PRIMARY KEY (EmployeeSysId, CareerEffectiveDate)
);

CREATE TABLE EmployeeTraining (
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  TrainingDate date NOT NULL,
  TrainingCourse varchar(120) NOT NULL,
  TrainingFee decimal(12, 2) NOT NULL DEFAULT 0,
  SponsorType integer NOT NULL DEFAULT 0,                    -- 0 percentage, 1 amount
  SponsorValue double NOT NULL DEFAULT 0,
  GovGrantType integer NOT NULL DEFAULT 0,                   -- 0 percentage, 1 amount
  GovGrantValue double NOT NULL DEFAULT 0,
  PRIMARY KEY (EmployeeSysId, TrainingDate)
);

CREATE TABLE EmployeeCostCentre (
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  CostCentreId varchar(20) NOT NULL REFERENCES CostCentre (CostCentreId),
  CostCentrePercent double NOT NULL,
  PRIMARY KEY (EmployeeSysId, CostCentreId)
) WITHOUT ROWID;

CREATE TABLE EmployeeShiftTeam (
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  ShiftTeamFrom date NOT NULL,
  ShiftTeamId varchar(20) NOT NULL REFERENCES ShiftTeam (ShiftTeamId),
  PRIMARY KEY (EmployeeSysId, ShiftTeamFrom)
) WITHOUT ROWID;

-- The variable component built up in an employee's wage, in percent, year by year.
CREATE TABLE EmployeeMVC (
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  MVCYear integer NOT NULL,
  MVCPercent double NOT NULL,
  PRIMARY KEY (EmployeeSysId, MVCYear)
) WITHOUT ROWID;

CREATE TABLE StaffMovement (
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  MovementDate date NOT NULL,
  MovementTypeId varchar(20) NOT NULL REFERENCES MovementType (MovementTypeId),
  FromDepartmentId varchar(20) REFERENCES Department (DepartmentId),
  ToDepartmentId varchar(20) REFERENCES Department (DepartmentId),
  PRIMARY KEY (EmployeeSysId, MovementDate, MovementTypeId)
) WITHOUT ROWID;

-- ---------------------------------------------------------------- payroll

CREATE TABLE PayPeriod (
  PayYear integer NOT NULL,
  PayPeriodNo integer NOT NULL,                              -- 1 to 12
  PeriodStart date NOT NULL,
  PeriodEnd date NOT NULL,
  PreviousYear integer NOT NULL,
  PreviousPeriodNo integer NOT NULL,
  PRIMARY KEY (PayYear, PayPeriodNo)
) WITHOUT ROWID;

-- A kind of pay run: its records' id, their sub period and their type (keyword of category 'Pay Rec Type'). In one period an
-- employee has at most one record of a type.
CREATE TABLE PayRun (
  PayRecId varchar(40) NOT NULL PRIMARY KEY,
  PayRecType varchar(40) NOT NULL REFERENCES KeyWord (KeyWordId),
  PayRecSubPeriod integer NOT NULL,                          -- of the period it pays
  PayRunDesc varchar(80) NOT NULL DEFAULT ''
);

-- Everything paid or deducted; the kind is an analysis item type ('PayElement', 'Allowance', ...).
CREATE TABLE PayItem (
  PayItemId varchar(20) NOT NULL PRIMARY KEY,
  PayItemKind varchar(40) NOT NULL REFERENCES AnlysDispSection (AnlysDispSectionId),
  PayItemDesc varchar(80) NOT NULL
);

-- The allowances and deductions an employee has every month.
CREATE TABLE EmployeePayItem (
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  PayItemId varchar(20) NOT NULL REFERENCES PayItem (PayItemId),
  MonthlyAmount decimal(12, 2) NOT NULL,
  PRIMARY KEY (EmployeeSysId, PayItemId)
) WITHOUT ROWID;

-- The totals of one pay record: GrossWage is the sum of the five columns before it, NetWage is GrossWage
-- less TotalDeduction, and the bank payments of the record add up to NetWage.
CREATE TABLE PayRecord (
  PayRecYear integer NOT NULL,
  PayRecPeriod integer NOT NULL,
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  PayRecId varchar(40) NOT NULL REFERENCES PayRun (PayRecId),
  WorkingDays double NOT NULL DEFAULT 0,
  BasicPay decimal(12, 2) NOT NULL DEFAULT 0,
  TotalAllowance decimal(12, 2) NOT NULL DEFAULT 0,
  OvertimePay decimal(12, 2) NOT NULL DEFAULT 0,
  ShiftPay decimal(12, 2) NOT NULL DEFAULT 0,
  TotalReimbursement decimal(12, 2) NOT NULL DEFAULT 0,
  GrossWage decimal(12, 2) NOT NULL DEFAULT 0,
  TotalDeduction decimal(12, 2) NOT NULL DEFAULT 0,
  NetWage decimal(12, 2) NOT NULL DEFAULT 0,
  PRIMARY KEY (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId)
) WITHOUT ROWID;
CREATE INDEX PayRecordByPayRecId ON PayRecord (PayRecId);

CREATE TABLE PayRecItem (
  PayRecYear integer NOT NULL,
  PayRecPeriod integer NOT NULL,
  EmployeeSysId integer NOT NULL,
  PayRecId varchar(40) NOT NULL,
  PayItemId varchar(20) NOT NULL REFERENCES PayItem (PayItemId),
  PayQuantity double NOT NULL DEFAULT 0,                     -- days, hours or times
  PayRate double NOT NULL DEFAULT 0,                         -- amount per unit
  PayAmount decimal(12, 2) NOT NULL,
  PRIMARY KEY (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId, PayItemId),
  FOREIGN KEY (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId)
    REFERENCES PayRecord (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId)
) WITHOUT ROWID;

CREATE TABLE PayRecBank (
  PayRecYear integer NOT NULL,
  PayRecPeriod integer NOT NULL,
  EmployeeSysId integer NOT NULL,
  PayRecId varchar(40) NOT NULL,
  PaymentCategory varchar(20) NOT NULL,                      -- ByCash, ByCheque, ByBank
  PaymentSequence integer NOT NULL,                          -- 1 to 9 within its category
  BankCode varchar(20) NOT NULL DEFAULT '',
  BankBranchCode varchar(20) NOT NULL DEFAULT '',
  BankAccount varchar(40) NOT NULL DEFAULT '',
  ExchangeRateID varchar(20) NOT NULL DEFAULT '',
  BankPaymentAmt decimal(12, 2) NOT NULL,
  BankPaymentValue decimal(12, 2) NOT NULL,                  -- in the currency of the exchange rate
  PRIMARY KEY (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId, PaymentCategory,
               PaymentSequence),
  FOREIGN KEY (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId)
    REFERENCES PayRecord (PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId)
) WITHOUT ROWID;

-- Work on a job on one day: TsAmount is the sum of the day's items.
CREATE TABLE TimesheetRecord (
  TsYear integer NOT NULL,
  TsPeriod integer NOT NULL,
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  JobCodeId varchar(20) NOT NULL REFERENCES JobCode (JobCodeId),
  TsDate date NOT NULL,
  TsHours double NOT NULL,
  TsAmount decimal(12, 2) NOT NULL,
  PRIMARY KEY (TsYear, TsPeriod, EmployeeSysId, JobCodeId, TsDate)
) WITHOUT ROWID;

CREATE TABLE TimesheetItem (
  TsYear integer NOT NULL,
  TsPeriod integer NOT NULL,
  EmployeeSysId integer NOT NULL,
  JobCodeId varchar(20) NOT NULL,
  TsDate date NOT NULL,
  PayItemId varchar(20) NOT NULL REFERENCES PayItem (PayItemId),
  TsQuantity double NOT NULL DEFAULT 0,
  TsRate double NOT NULL DEFAULT 0,
  TsItemAmount decimal(12, 2) NOT NULL,
  PRIMARY KEY (TsYear, TsPeriod, EmployeeSysId, JobCodeId, TsDate, PayItemId),
  FOREIGN KEY (TsYear, TsPeriod, EmployeeSysId, JobCodeId, TsDate)
    REFERENCES TimesheetRecord (TsYear, TsPeriod, EmployeeSysId, JobCodeId, TsDate)
) WITHOUT ROWID;

CREATE TABLE LeaveEntitlement (
  LeaveYear integer NOT NULL,
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  LeaveTypeId varchar(20) NOT NULL REFERENCES LeaveType (LeaveTypeId),
  BroughtForward double NOT NULL DEFAULT 0,                  -- days
  Entitlement double NOT NULL DEFAULT 0,
  PRIMARY KEY (LeaveYear, EmployeeSysId, LeaveTypeId)
) WITHOUT ROWID;

CREATE TABLE LeaveRecord (
  EmployeeSysId integer NOT NULL REFERENCES Employee (EmployeeSysId),
  LeaveTypeId varchar(20) NOT NULL REFERENCES LeaveType (LeaveTypeId),
  LeaveFrom timestamp NOT NULL,
  LeaveDays double NOT NULL,
  LeaveYear integer NOT NULL,
  LeavePeriod integer NOT NULL,                              -- the pay period it is charged to
  PayRecType varchar(40) NOT NULL REFERENCES KeyWord (KeyWordId),
  PRIMARY KEY (EmployeeSysId, LeaveTypeId, LeaveFrom)
) WITHOUT ROWID;

-- An employee's leave of a year at a glance, one row per leave type.
CREATE VIEW LeaveRecordSum AS
  SELECT Given.EmployeeSysId AS EmployeeSysId, Given.LeaveYear AS LeaveYear, Given.LeaveTypeId AS LeaveTypeId,
         Given.BroughtForward AS LeaveBroughtForward, Given.Entitlement AS LeaveEntitled,
         COALESCE(SUM(Taken.LeaveDays), 0.0) AS LeaveTaken,
         Given.BroughtForward + Given.Entitlement - COALESCE(SUM(Taken.LeaveDays), 0.0) AS LeaveBalance
  FROM LeaveEntitlement AS Given
       LEFT JOIN LeaveRecord AS Taken ON Taken.EmployeeSysId = Given.EmployeeSysId
         AND Taken.LeaveTypeId = Given.LeaveTypeId AND Taken.LeaveYear = Given.LeaveYear
  GROUP BY Given.LeaveYear, Given.EmployeeSysId, Given.LeaveTypeId;

-- ---------------------------------------------------------------- analysis setups
--
-- An analysis project names one of the Setup... views. Each has columns of AnlysItemRecord; what a view
-- leaves out keeps its default. To add a component of a 'system' item type: a row of AnItemLookup and a WHEN.

-- The figures of the pay records, one row each: Amount, Quantity and Rate, and 1 as HeadCount where a record
-- counts as a head. Three views of one shape: the items, the totals, the payments.
CREATE VIEW PayItemFigure AS
  SELECT Item.PayRecYear AS PayYear, Item.PayRecPeriod AS PayPeriodNo, Run.PayRecSubPeriod AS PaySubPeriod,
         Run.PayRecType AS PayRecType, Item.PayRecId AS PayRecId, Item.EmployeeSysId AS EmployeeSysId,
         Kind.PayItemKind AS SectionId, Item.PayItemId AS Item1Id, '' AS Item2Id, '' AS Item3Id, '' AS Item4Id,
         '' AS Item5Id, Kind.PayItemDesc AS ItemDesc, '' AS LookUpId, Item.PayAmount AS Amount,
         Item.PayQuantity AS Quantity, Item.PayRate AS Rate, 0 AS HeadCount
  FROM PayRecItem AS Item CROSS JOIN PayRun AS Run ON Run.PayRecId = Item.PayRecId
       CROSS JOIN PayItem AS Kind ON Kind.PayItemId = Item.PayItemId;

CREATE VIEW PayTotalFigure AS
  SELECT Pay.PayRecYear AS PayYear, Pay.PayRecPeriod AS PayPeriodNo, Run.PayRecSubPeriod AS PaySubPeriod,
         Run.PayRecType AS PayRecType, Pay.PayRecId AS PayRecId, Pay.EmployeeSysId AS EmployeeSysId,
         'PaySystem' AS SectionId, Component.AnlysLookupId AS Item1Id, '' AS Item2Id, '' AS Item3Id,
         '' AS Item4Id, '' AS Item5Id, Component.AnlysLookupDesc AS ItemDesc,
         Component.AnlysLookupId AS LookUpId,
         CASE Component.AnlysLookupId
           WHEN 'BasicPay' THEN Pay.BasicPay
           WHEN 'TotalAllowance' THEN Pay.TotalAllowance
           WHEN 'OvertimePay' THEN Pay.OvertimePay
           WHEN 'ShiftPay' THEN Pay.ShiftPay
           WHEN 'TotalReimbursement' THEN Pay.TotalReimbursement
           WHEN 'GrossWage' THEN Pay.GrossWage
           WHEN 'TotalDeduction' THEN Pay.TotalDeduction
           WHEN 'NetWage' THEN Pay.NetWage
           ELSE 0 END AS Amount,
         CASE Component.AnlysLookupId WHEN 'WorkingDays' THEN Pay.WorkingDays ELSE 0 END AS Quantity, 0 AS Rate,
         CASE Component.AnlysLookupId WHEN 'PayHeadCount' THEN 1 ELSE 0 END AS HeadCount
  FROM PayRecord AS Pay CROSS JOIN PayRun AS Run ON Run.PayRecId = Pay.PayRecId
       CROSS JOIN AnItemLookup AS Component ON Component.AnlysItemTypeId = 'PaySystem';

CREATE VIEW PaymentFigure AS
  SELECT Bank.PayRecYear AS PayYear, Bank.PayRecPeriod AS PayPeriodNo, Run.PayRecSubPeriod AS PaySubPeriod,
         Run.PayRecType AS PayRecType, Bank.PayRecId AS PayRecId, Bank.EmployeeSysId AS EmployeeSysId,
         'BankRecord' AS SectionId, Bank.BankBranchCode AS Item1Id, Bank.BankCode AS Item2Id,
         Bank.BankAccount AS Item3Id, Bank.ExchangeRateID AS Item4Id,
         Bank.PaymentCategory || '_' || Bank.PaymentSequence AS Item5Id, 'Bank payment' AS ItemDesc,
         'BankPaymentAmt' AS LookUpId, Bank.BankPaymentAmt AS Amount, Bank.BankPaymentValue AS Quantity,
         0 AS Rate, 0 AS HeadCount
  FROM PayRecBank AS Bank CROSS JOIN PayRun AS Run ON Run.PayRecId = Bank.PayRecId;

CREATE VIEW PayAnalysis AS
  SELECT * FROM PayItemFigure UNION ALL SELECT * FROM PayTotalFigure UNION ALL SELECT * FROM PaymentFigure;

-- Pay records of each employee by pay period and record type.
CREATE VIEW SetupPayByType AS
  SELECT PayYear AS AnlysItemRecYear, PayPeriodNo AS AnlysItemRecPeriodMonth, 0 AS AnlysItemRecSubPeriod,
         PayRecType AS AnlysPayRecBasis, CAST(EmployeeSysId AS TEXT) AS Basis1Id,
         SectionId AS AnlysDispSectionId, Item1Id AS AnlysItem1Id, Item2Id AS AnlysItem2Id,
         Item3Id AS AnlysItem3Id, Item4Id AS AnlysItem4Id, Item5Id AS AnlysItem5Id, ItemDesc AS AnlysItemDesc,
         LookUpId AS AnlysLookUpId, Amount AS AnlysAmount1, Quantity AS AnlysAmount2,
         Rate AS AnlysDoubleValue3, HeadCount AS AnlysCount1
  FROM PayAnalysis;

-- Pay records of each employee by pay period, sub period and record id.
CREATE VIEW SetupPayById AS
  SELECT PayYear AS AnlysItemRecYear, PayPeriodNo AS AnlysItemRecPeriodMonth,
         PaySubPeriod AS AnlysItemRecSubPeriod, PayRecId AS AnlysPayRecBasis,
         CAST(EmployeeSysId AS TEXT) AS Basis1Id, SectionId AS AnlysDispSectionId, Item1Id AS AnlysItem1Id,
         Item2Id AS AnlysItem2Id, Item3Id AS AnlysItem3Id, Item4Id AS AnlysItem4Id, Item5Id AS AnlysItem5Id,
         ItemDesc AS AnlysItemDesc, LookUpId AS AnlysLookUpId, Amount AS AnlysAmount1,
         Quantity AS AnlysAmount2, Rate AS AnlysDoubleValue3, HeadCount AS AnlysCount1
  FROM PayAnalysis;

-- The cost centre that carries most of an employee, '' for none.
CREATE VIEW EmployeeKeyCostCentre AS
  SELECT Employee.EmployeeSysId AS EmployeeSysId,
         COALESCE((SELECT Share.CostCentreId FROM EmployeeCostCentre AS Share
                   WHERE Share.EmployeeSysId = Employee.EmployeeSysId
                   ORDER BY Share.CostCentrePercent DESC, Share.CostCentreId LIMIT 1), '') AS CostCentreId
  FROM Employee;

-- Where an employee counts in a year, by the name of a set of bases. The age is the one the year brings.
CREATE VIEW EmployeeBasis AS
  SELECT 'Company' AS BasisSet, Years.PayYear AS PayYear, EmployeeSysId, CompanyId AS Basis1Id, '' AS Basis2Id
  FROM Employee CROSS JOIN (SELECT DISTINCT PayYear FROM PayPeriod) AS Years
  UNION ALL
  SELECT 'Department', Years.PayYear, EmployeeSysId, COALESCE(DepartmentId, ''), ''
  FROM Employee CROSS JOIN (SELECT DISTINCT PayYear FROM PayPeriod) AS Years
  UNION ALL
  SELECT 'CostCentreAge', Years.PayYear, Employee.EmployeeSysId, Centre.CostCentreId,
         Ages.AnlysPolicyRangeCode
  FROM Employee CROSS JOIN (SELECT DISTINCT PayYear FROM PayPeriod) AS Years
       JOIN EmployeeKeyCostCentre AS Centre ON Centre.EmployeeSysId = Employee.EmployeeSysId
       JOIN Personal ON Personal.PersonalSysId = Employee.PersonalSysId
       JOIN AnlysPolicyRange AS Ages ON Ages.AnlysBasisPolicyId = 'AGE'
         AND Years.PayYear - CAST(strftime('%Y', Personal.DateOfBirth) AS INTEGER) >= Ages.AnlysPolicyRangeFrom
         AND Years.PayYear - CAST(strftime('%Y', Personal.DateOfBirth) AS INTEGER) < Ages.AnlysPolicyRangeTo;

-- Pay records summed over the employees of each basis; payments by category. Each kind of figure is summed on
-- its own, and CROSS JOIN keeps the order of the tables: so a copy's period range reaches the pay tables'
-- keys, and the bases are looked up.
CREATE VIEW PayByBasis AS
  SELECT Basis.BasisSet AS BasisSet, Pay.PayYear AS AnlysItemRecYear, Pay.PayPeriodNo AS AnlysItemRecPeriodMonth,
         0 AS AnlysItemRecSubPeriod, Pay.PayRecType AS AnlysPayRecBasis, Basis.Basis1Id AS Basis1Id,
         Basis.Basis2Id AS Basis2Id, Pay.SectionId AS AnlysDispSectionId, Pay.Item1Id AS AnlysItem1Id,
         Pay.Item5Id AS AnlysItem5Id, Pay.ItemDesc AS AnlysItemDesc, Pay.LookUpId AS AnlysLookUpId,
         ROUND(SUM(Pay.Amount), 2) AS AnlysAmount1, ROUND(SUM(Pay.Quantity), 2) AS AnlysAmount2,
         SUM(Pay.HeadCount) AS AnlysCount1
  FROM PayItemFigure AS Pay
       CROSS JOIN EmployeeBasis AS Basis
         ON Basis.EmployeeSysId = Pay.EmployeeSysId AND Basis.PayYear = Pay.PayYear
  GROUP BY Basis.BasisSet, Pay.PayYear, Pay.PayPeriodNo, Pay.PayRecType, Basis.Basis1Id, Basis.Basis2Id,
           Pay.SectionId, Pay.Item1Id
  UNION ALL
  SELECT Basis.BasisSet AS BasisSet, Pay.PayYear AS AnlysItemRecYear, Pay.PayPeriodNo AS AnlysItemRecPeriodMonth,
         0 AS AnlysItemRecSubPeriod, Pay.PayRecType AS AnlysPayRecBasis, Basis.Basis1Id AS Basis1Id,
         Basis.Basis2Id AS Basis2Id, Pay.SectionId AS AnlysDispSectionId, Pay.Item1Id AS AnlysItem1Id,
         Pay.Item5Id AS AnlysItem5Id, Pay.ItemDesc AS AnlysItemDesc, Pay.LookUpId AS AnlysLookUpId,
         ROUND(SUM(Pay.Amount), 2) AS AnlysAmount1, ROUND(SUM(Pay.Quantity), 2) AS AnlysAmount2,
         SUM(Pay.HeadCount) AS AnlysCount1
  FROM PayTotalFigure AS Pay
       CROSS JOIN EmployeeBasis AS Basis
         ON Basis.EmployeeSysId = Pay.EmployeeSysId AND Basis.PayYear = Pay.PayYear
  GROUP BY Basis.BasisSet, Pay.PayYear, Pay.PayPeriodNo, Pay.PayRecType, Basis.Basis1Id, Basis.Basis2Id,
           Pay.SectionId, Pay.Item1Id
  UNION ALL
  SELECT Basis.BasisSet AS BasisSet, Pay.PayYear AS AnlysItemRecYear, Pay.PayPeriodNo AS AnlysItemRecPeriodMonth,
         0 AS AnlysItemRecSubPeriod, Pay.PayRecType AS AnlysPayRecBasis, Basis.Basis1Id AS Basis1Id,
         Basis.Basis2Id AS Basis2Id, Pay.SectionId AS AnlysDispSectionId, '' AS AnlysItem1Id,
         Pay.Item5Id AS AnlysItem5Id, Pay.ItemDesc AS AnlysItemDesc, Pay.LookUpId AS AnlysLookUpId,
         ROUND(SUM(Pay.Amount), 2) AS AnlysAmount1, ROUND(SUM(Pay.Quantity), 2) AS AnlysAmount2,
         SUM(Pay.HeadCount) AS AnlysCount1
  FROM PaymentFigure AS Pay
       CROSS JOIN EmployeeBasis AS Basis
         ON Basis.EmployeeSysId = Pay.EmployeeSysId AND Basis.PayYear = Pay.PayYear
  GROUP BY Basis.BasisSet, Pay.PayYear, Pay.PayPeriodNo, Pay.PayRecType, Basis.Basis1Id, Basis.Basis2Id,
           Pay.Item5Id;

-- A worksheet at company level prints one company, '001'.
CREATE VIEW SetupCompanyPay AS SELECT * FROM PayByBasis WHERE BasisSet = 'Company' AND Basis1Id = '001';
CREATE VIEW SetupDepartmentPay AS SELECT * FROM PayByBasis WHERE BasisSet = 'Department';
CREATE VIEW SetupCostCentreAgePay AS SELECT * FROM PayByBasis WHERE BasisSet = 'CostCentreAge';

-- Every pay period twice: with its own figures and with those of the period before.
CREATE VIEW PayPeriodPair AS
  SELECT PayYear, PayPeriodNo, 1 AS IsCurrent, PayYear AS SourceYear, PayPeriodNo AS SourcePeriodNo FROM PayPeriod
  UNION ALL
  SELECT PayYear, PayPeriodNo, 0, PreviousYear, PreviousPeriodNo FROM PayPeriod;

CREATE VIEW ManagementPayPair AS
  SELECT Pair.PayYear AS PayYear, Pair.PayPeriodNo AS PayPeriodNo, Pay.PayRecType AS PayRecType,
         Pay.EmployeeSysId AS EmployeeSysId, Pay.SectionId AS SectionId, MAX(Pay.Item1Id) AS Item1Id,
         MAX(Pay.Item2Id) AS Item2Id, MAX(Pay.Item3Id) AS Item3Id, MAX(Pay.Item4Id) AS Item4Id,
         Pay.Item5Id AS Item5Id, Pay.ItemDesc AS ItemDesc, Pay.LookUpId AS LookUpId,
         SUM(Pay.Amount * Pair.IsCurrent) AS Amount, SUM(Pay.Amount * (1 - Pair.IsCurrent)) AS PreviousAmount,
         SUM(Pay.Quantity * Pair.IsCurrent) AS Quantity,
         SUM(Pay.Quantity * (1 - Pair.IsCurrent)) AS PreviousQuantity,
         SUM(Pay.HeadCount * Pair.IsCurrent) AS HeadCount,
         SUM(Pay.HeadCount * (1 - Pair.IsCurrent)) AS PreviousHeadCount
  FROM PayPeriodPair AS Pair CROSS JOIN Employee CROSS JOIN PayItemFigure AS Pay
    ON Pay.PayYear = Pair.SourceYear AND Pay.PayPeriodNo = Pair.SourcePeriodNo
       AND Pay.EmployeeSysId = Employee.EmployeeSysId
  WHERE Employee.CategoryId = 'MGT'
  GROUP BY Pair.PayYear, Pair.PayPeriodNo, Pay.PayRecType, Pay.EmployeeSysId, Pay.SectionId, Pay.Item1Id
  UNION ALL
  SELECT Pair.PayYear AS PayYear, Pair.PayPeriodNo AS PayPeriodNo, Pay.PayRecType AS PayRecType,
         Pay.EmployeeSysId AS EmployeeSysId, Pay.SectionId AS SectionId, MAX(Pay.Item1Id) AS Item1Id,
         MAX(Pay.Item2Id) AS Item2Id, MAX(Pay.Item3Id) AS Item3Id, MAX(Pay.Item4Id) AS Item4Id,
         Pay.Item5Id AS Item5Id, Pay.ItemDesc AS ItemDesc, Pay.LookUpId AS LookUpId,
         SUM(Pay.Amount * Pair.IsCurrent) AS Amount, SUM(Pay.Amount * (1 - Pair.IsCurrent)) AS PreviousAmount,
         SUM(Pay.Quantity * Pair.IsCurrent) AS Quantity,
         SUM(Pay.Quantity * (1 - Pair.IsCurrent)) AS PreviousQuantity,
         SUM(Pay.HeadCount * Pair.IsCurrent) AS HeadCount,
         SUM(Pay.HeadCount * (1 - Pair.IsCurrent)) AS PreviousHeadCount
  FROM PayPeriodPair AS Pair CROSS JOIN Employee CROSS JOIN PayTotalFigure AS Pay
    ON Pay.PayYear = Pair.SourceYear AND Pay.PayPeriodNo = Pair.SourcePeriodNo
       AND Pay.EmployeeSysId = Employee.EmployeeSysId
  WHERE Employee.CategoryId = 'MGT'
  GROUP BY Pair.PayYear, Pair.PayPeriodNo, Pay.PayRecType, Pay.EmployeeSysId, Pay.SectionId, Pay.Item1Id
  UNION ALL
  SELECT Pair.PayYear AS PayYear, Pair.PayPeriodNo AS PayPeriodNo, Pay.PayRecType AS PayRecType,
         Pay.EmployeeSysId AS EmployeeSysId, Pay.SectionId AS SectionId, MAX(Pay.Item1Id) AS Item1Id,
         MAX(Pay.Item2Id) AS Item2Id, MAX(Pay.Item3Id) AS Item3Id, MAX(Pay.Item4Id) AS Item4Id,
         Pay.Item5Id AS Item5Id, Pay.ItemDesc AS ItemDesc, Pay.LookUpId AS LookUpId,
         SUM(Pay.Amount * Pair.IsCurrent) AS Amount, SUM(Pay.Amount * (1 - Pair.IsCurrent)) AS PreviousAmount,
         SUM(Pay.Quantity * Pair.IsCurrent) AS Quantity,
         SUM(Pay.Quantity * (1 - Pair.IsCurrent)) AS PreviousQuantity,
         SUM(Pay.HeadCount * Pair.IsCurrent) AS HeadCount,
         SUM(Pay.HeadCount * (1 - Pair.IsCurrent)) AS PreviousHeadCount
  FROM PayPeriodPair AS Pair CROSS JOIN Employee CROSS JOIN PaymentFigure AS Pay
    ON Pay.PayYear = Pair.SourceYear AND Pay.PayPeriodNo = Pair.SourcePeriodNo
       AND Pay.EmployeeSysId = Employee.EmployeeSysId
  WHERE Employee.CategoryId = 'MGT'
  GROUP BY Pair.PayYear, Pair.PayPeriodNo, Pay.PayRecType, Pay.EmployeeSysId, Pay.Item5Id;

-- Management's pay records, each period beside the one before it.
CREATE VIEW SetupManagementRecon AS
  SELECT PayYear AS AnlysItemRecYear, PayPeriodNo AS AnlysItemRecPeriodMonth, 0 AS AnlysItemRecSubPeriod,
         PayRecType AS AnlysPayRecBasis, CAST(EmployeeSysId AS TEXT) AS Basis1Id,
         SectionId AS AnlysDispSectionId, Item1Id AS AnlysItem1Id, Item2Id AS AnlysItem2Id,
         Item3Id AS AnlysItem3Id, Item4Id AS AnlysItem4Id, Item5Id AS AnlysItem5Id, ItemDesc AS AnlysItemDesc,
         LookUpId AS AnlysLookUpId, Amount AS AnlysAmount1, PreviousAmount AS AnlysFAmount1,
         ROUND(Amount - PreviousAmount, 2) AS AnlysDoubleValue1, Quantity AS AnlysAmount2,
         PreviousQuantity AS AnlysFAmount2, ROUND(Quantity - PreviousQuantity, 2) AS AnlysDoubleValue2,
         HeadCount AS AnlysCount1, PreviousHeadCount AS AnlysCount2, HeadCount - PreviousHeadCount AS AnlysCount3
  FROM ManagementPayPair;

-- Timesheets by employee, job code and date; the date is the text that prints.
CREATE VIEW SetupTimesheets AS
  SELECT Item.TsYear AS AnlysItemRecYear, Item.TsPeriod AS AnlysItemRecPeriodMonth, 0 AS AnlysItemRecSubPeriod,
         'Normal' AS AnlysPayRecBasis, CAST(Item.EmployeeSysId AS TEXT) AS Basis1Id,
         Item.JobCodeId AS Basis2Id, strftime('%d/%m/%Y', Item.TsDate) AS Basis3Id,
         Kind.PayItemKind AS AnlysDispSectionId, Item.PayItemId AS AnlysItem1Id,
         Kind.PayItemDesc AS AnlysItemDesc, '' AS AnlysLookUpId, Item.TsItemAmount AS AnlysAmount1,
         Item.TsQuantity AS AnlysAmount2, Item.TsRate AS AnlysDoubleValue3
  FROM TimesheetItem AS Item CROSS JOIN PayItem AS Kind ON Kind.PayItemId = Item.PayItemId
  UNION ALL
  SELECT Day.TsYear, Day.TsPeriod, 0, 'Normal', CAST(Day.EmployeeSysId AS TEXT), Day.JobCodeId,
         strftime('%d/%m/%Y', Day.TsDate), 'TsDetail', Component.AnlysLookupId, Component.AnlysLookupDesc,
         Component.AnlysLookupId, Day.TsAmount, Day.TsHours, 0
  FROM TimesheetRecord AS Day CROSS JOIN AnItemLookup AS Component ON Component.AnlysItemTypeId = 'TsDetail';

-- The same by employee and job code.
CREATE VIEW SetupTimesheetSummary AS
  SELECT AnlysItemRecYear, AnlysItemRecPeriodMonth, 0 AS AnlysItemRecSubPeriod, AnlysPayRecBasis, Basis1Id,
         Basis2Id, AnlysDispSectionId, AnlysItem1Id, AnlysItemDesc, AnlysLookUpId,
         ROUND(SUM(AnlysAmount1), 2) AS AnlysAmount1, ROUND(SUM(AnlysAmount2), 2) AS AnlysAmount2
  FROM SetupTimesheets
  GROUP BY AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysPayRecBasis, Basis1Id, Basis2Id,
           AnlysDispSectionId, AnlysItem1Id;

-- Leave of an employee and leave type: per pay period and record type in which leave was taken ('Period'),
-- and as of the last day of each pay period ('AsOf', the day as sub period).
CREATE VIEW LeaveStanding AS
  SELECT 'Period' AS Kind, Used.LeaveYear AS LeaveYear, Used.LeavePeriod AS LeavePeriod, 0 AS LeaveSubPeriod,
         Used.PayRecType AS PayRecType, Given.EmployeeSysId AS EmployeeSysId, Given.LeaveTypeId AS LeaveTypeId,
         Given.BroughtForward AS BroughtForward, Given.Entitlement AS Entitlement,
         (SELECT TOTAL(LeaveDays) FROM LeaveRecord AS Taken
          WHERE Taken.EmployeeSysId = Given.EmployeeSysId AND Taken.LeaveTypeId = Given.LeaveTypeId
            AND Taken.LeaveYear = Used.LeaveYear AND Taken.LeavePeriod = Used.LeavePeriod
            AND Taken.PayRecType = Used.PayRecType) AS TakenNow,
         (SELECT TOTAL(LeaveDays) FROM LeaveRecord AS Taken
          WHERE Taken.EmployeeSysId = Given.EmployeeSysId AND Taken.LeaveTypeId = Given.LeaveTypeId
            AND Taken.LeaveYear = Used.LeaveYear AND Taken.LeavePeriod <= Used.LeavePeriod) AS TakenToDate,
         (SELECT MAX(LeaveFrom) FROM LeaveRecord AS Taken
          WHERE Taken.EmployeeSysId = Given.EmployeeSysId AND Taken.LeaveTypeId = Given.LeaveTypeId
            AND Taken.LeaveYear = Used.LeaveYear AND Taken.LeavePeriod = Used.LeavePeriod
            AND Taken.PayRecType = Used.PayRecType) AS LastLeaveFrom
  FROM (SELECT DISTINCT LeaveYear, LeavePeriod, PayRecType, EmployeeSysId FROM LeaveRecord) AS Used
       JOIN LeaveEntitlement AS Given
         ON Given.LeaveYear = Used.LeaveYear AND Given.EmployeeSysId = Used.EmployeeSysId
  UNION ALL
  SELECT 'AsOf', Period.PayYear, Period.PayPeriodNo, CAST(strftime('%d', Period.PeriodEnd) AS INTEGER), 'Balance',
         Given.EmployeeSysId, Given.LeaveTypeId, Given.BroughtForward, Given.Entitlement,
         (SELECT TOTAL(LeaveDays) FROM LeaveRecord AS Taken
          WHERE Taken.EmployeeSysId = Given.EmployeeSysId AND Taken.LeaveTypeId = Given.LeaveTypeId
            AND Taken.LeaveYear = Period.PayYear AND Taken.LeavePeriod <= Period.PayPeriodNo),
         (SELECT TOTAL(LeaveDays) FROM LeaveRecord AS Taken
          WHERE Taken.EmployeeSysId = Given.EmployeeSysId AND Taken.LeaveTypeId = Given.LeaveTypeId
            AND Taken.LeaveYear = Period.PayYear AND Taken.LeavePeriod <= Period.PayPeriodNo),
         (SELECT MAX(LeaveFrom) FROM LeaveRecord AS Taken
          WHERE Taken.EmployeeSysId = Given.EmployeeSysId AND Taken.LeaveTypeId = Given.LeaveTypeId
            AND Taken.LeaveYear = Period.PayYear AND Taken.LeavePeriod <= Period.PayPeriodNo)
  FROM PayPeriod AS Period CROSS JOIN LeaveEntitlement AS Given ON Given.LeaveYear = Period.PayYear
       CROSS JOIN Employee ON Employee.EmployeeSysId = Given.EmployeeSysId
         AND Employee.HireDate <= Period.PeriodEnd
         AND COALESCE(Employee.CessationDate, Period.PeriodEnd) >= Period.PeriodEnd;

CREATE VIEW LeaveAnalysis AS
  SELECT Standing.Kind AS Kind, Standing.LeaveYear AS AnlysItemRecYear,
         Standing.LeavePeriod AS AnlysItemRecPeriodMonth, Standing.LeaveSubPeriod AS AnlysItemRecSubPeriod,
         Standing.PayRecType AS AnlysPayRecBasis, CAST(Standing.EmployeeSysId AS TEXT) AS Basis1Id,
         Component.AnlysItemTypeId AS AnlysDispSectionId,
         CASE Component.AnlysItemTypeId WHEN 'LeaveRecord' THEN Standing.LeaveTypeId
                                        ELSE Component.AnlysLookupId END AS AnlysItem1Id,
         Component.AnlysLookupDesc AS AnlysItemDesc, Component.AnlysLookupId AS AnlysLookUpId,
         CASE Component.AnlysLookupId
           WHEN 'AnlLveBroughtForward' THEN Standing.BroughtForward
           WHEN 'SickLveBroughtForward' THEN Standing.BroughtForward
           WHEN 'AnlCurrLveEntitlement' THEN Standing.Entitlement
           WHEN 'SickCurrLveEntitlement' THEN Standing.Entitlement
           WHEN 'AnlLveTaken' THEN Standing.TakenNow
           WHEN 'SickLveTaken' THEN Standing.TakenNow
           WHEN 'LeaveDays' THEN Standing.TakenNow
           WHEN 'AnlLveBalance' THEN Standing.BroughtForward + Standing.Entitlement - Standing.TakenToDate
           WHEN 'SickLveBalance' THEN Standing.BroughtForward + Standing.Entitlement - Standing.TakenToDate
           WHEN 'AnlLveEarned' THEN ROUND(Standing.Entitlement * Standing.LeavePeriod / 12, 1)
         END AS AnlysDoubleValue1,
         Standing.LastLeaveFrom AS AnlysTimestamp1
  FROM LeaveStanding AS Standing CROSS JOIN AnItemLookup AS Component
    ON (Component.AnlysItemTypeId IN ('LeaveSystem', 'LeaveCareerSystem')
        AND Standing.LeaveTypeId = CASE WHEN Component.AnlysLookupId LIKE 'Sick%' THEN 'SICK' ELSE 'ANNUAL' END)
    OR (Component.AnlysItemTypeId = 'LeaveRecord' AND Component.AnlysLookupId = 'LeaveDays');

CREATE VIEW SetupLeavePeriods AS SELECT * FROM LeaveAnalysis WHERE Kind = 'Period';
CREATE VIEW SetupLeaveAsOf AS SELECT * FROM LeaveAnalysis WHERE Kind = 'AsOf';

-- What happened in a department in a month (month index: 12 times the year plus the month).
CREATE VIEW DepartmentMovement AS
  SELECT DepartmentId, MonthIndex, SUM(Hired) AS Hired, SUM(Confirmed) AS Confirmed, SUM(MovedIn) AS MovedIn,
         SUM(MovedOut) AS MovedOut, SUM(Ceased) AS Ceased,
         SUM(Hired) + SUM(MovedIn) - SUM(MovedOut) - SUM(Ceased) AS Net
  FROM (SELECT ToDepartmentId AS DepartmentId,
               12 * CAST(substr(MovementDate, 1, 4) AS INTEGER) + CAST(substr(MovementDate, 6, 2) AS INTEGER)
                 AS MonthIndex,
               MovementTypeId = 'HIRE' AS Hired, MovementTypeId = 'CONFIRM' AS Confirmed,
               MovementTypeId = 'TRANSFER' AS MovedIn, 0 AS MovedOut, 0 AS Ceased
        FROM StaffMovement WHERE ToDepartmentId IS NOT NULL
        UNION ALL
        SELECT FromDepartmentId,
               12 * CAST(substr(MovementDate, 1, 4) AS INTEGER) + CAST(substr(MovementDate, 6, 2) AS INTEGER),
               0, 0, 0, MovementTypeId = 'TRANSFER', MovementTypeId = 'CEASE'
        FROM StaffMovement WHERE FromDepartmentId IS NOT NULL)
  GROUP BY DepartmentId, MonthIndex;

-- Movements by department, over the month or over the twelve months that end with it.
CREATE VIEW MovementAnalysis AS
  SELECT Span.Kind AS Kind, Span.PayYear AS AnlysItemRecYear, Span.PayPeriodNo AS AnlysItemRecPeriodMonth,
         0 AS AnlysItemRecSubPeriod, Department.DepartmentId AS Basis1Id, 'Movement' AS AnlysDispSectionId,
         Component.AnlysLookupId AS AnlysItem1Id, Component.AnlysLookupDesc AS AnlysItemDesc,
         Component.AnlysLookupId AS AnlysLookUpId,
         COALESCE(SUM(CASE Component.AnlysLookupId
           WHEN 'MovementOpening' THEN Moved.Net * (Moved.MonthIndex < Span.FirstMonth)
           WHEN 'MovementHired' THEN Moved.Hired * (Moved.MonthIndex >= Span.FirstMonth)
           WHEN 'MovementConfirmed' THEN Moved.Confirmed * (Moved.MonthIndex >= Span.FirstMonth)
           WHEN 'MovementIn' THEN Moved.MovedIn * (Moved.MonthIndex >= Span.FirstMonth)
           WHEN 'MovementOut' THEN Moved.MovedOut * (Moved.MonthIndex >= Span.FirstMonth)
           WHEN 'MovementCeased' THEN Moved.Ceased * (Moved.MonthIndex >= Span.FirstMonth)
           WHEN 'MovementClosing' THEN Moved.Net END), 0) AS AnlysCount1
  FROM (SELECT 'Month' AS Kind, PayYear, PayPeriodNo, 12 * PayYear + PayPeriodNo AS FirstMonth,
               12 * PayYear + PayPeriodNo AS LastMonth FROM PayPeriod
        UNION ALL
        SELECT 'Year', PayYear, PayPeriodNo, 12 * PayYear + PayPeriodNo - 11, 12 * PayYear + PayPeriodNo
        FROM PayPeriod) AS Span
       CROSS JOIN Department
       CROSS JOIN AnItemLookup AS Component ON Component.AnlysItemTypeId = 'Movement'
       LEFT JOIN DepartmentMovement AS Moved
         ON Moved.DepartmentId = Department.DepartmentId AND Moved.MonthIndex <= Span.LastMonth
  GROUP BY Span.Kind, Span.PayYear, Span.PayPeriodNo, Department.DepartmentId, Component.AnlysLookupId;

CREATE VIEW SetupMovementMonth AS SELECT * FROM MovementAnalysis WHERE Kind = 'Month';
CREATE VIEW SetupMovementYear AS SELECT * FROM MovementAnalysis WHERE Kind = 'Year';

-- ---------------------------------------------------------------- rows no database can do without

INSERT INTO SystemParameter VALUES
  ('Country', 'Singapore'), ('DateFormat', 'dd/mm/yyyy'), ('RetirementAge', '63');

-- The application's underline constants.
INSERT INTO ExcelExpKeyword VALUES
  ('UnderlineNone', 'Underline', -4142), ('UnderlineSingle', 'Underline', 2),
  ('UnderlineDouble', 'Underline', -4119), ('UnderlineSingleAccounting', 'Underline', 4),
  ('UnderlineDoubleAccounting', 'Underline', 5);

-- The named colours of the application's default palette.
INSERT INTO ColourCodeMapping VALUES
  ('Black', 1), ('White', 2), ('Red', 3), ('BrightGreen', 4), ('Blue', 5), ('Yellow', 6), ('Pink', 7),
  ('Turquoise', 8), ('DarkRed', 9), ('Green', 10), ('DarkBlue', 11), ('DarkYellow', 12), ('Violet', 13),
  ('Teal', 14), ('Grey25', 15), ('Grey50', 16), ('SkyBlue', 33), ('LightTurquoise', 34), ('LightGreen', 35),
  ('LightYellow', 36), ('PaleBlue', 37), ('Rose', 38), ('Lavender', 39), ('Tan', 40), ('LightBlue', 41),
  ('Aqua', 42), ('Lime', 43), ('Gold', 44), ('LightOrange', 45), ('Orange', 46), ('BlueGrey', 47),
  ('Grey40', 48), ('DarkTeal', 49), ('SeaGreen', 50), ('DarkGreen', 51), ('OliveGreen', 52), ('Brown', 53),
  ('Plum', 54), ('Indigo', 55), ('Grey80', 56);

-- The breakdown listing fetches this one beside its own.
INSERT INTO ColourScheme (ColourSchemeId, ColourSchemeDesc, ColourCodeId)
  VALUES ('DefColourScheme', 'Default: plain text', 'Black');

INSERT INTO KeyWord VALUES
  ('Normal', 'Pay Rec Type', 'Month-end pay'), ('Bonus', 'Pay Rec Type', 'Bonus'),
  ('Adjust', 'Pay Rec Type', 'Adjustment'),
  ('Monthly', 'Basic Rate Type', 'Monthly rated'), ('Daily', 'Basic Rate Type', 'Daily rated'),
  ('Hourly', 'Basic Rate Type', 'Hourly rated');

-- Every item type is its own setup and its own display section.
INSERT INTO AnlysItemSetup (AnlysItemSetupId, AnlysItemTypeId)
  SELECT column1, column1 FROM (VALUES ('PayElement'), ('Allowance'), ('Deduction'), ('Reimbursement'),
    ('OTRecord'), ('ShiftRecord'), ('PaySystem'), ('BankRecord'), ('TsPayElement'), ('TsAllowance'),
    ('TsDeduction'), ('TsReimbursement'), ('TsOvertime'), ('TsShift'), ('TsDetail'), ('TsDistribute'),
    ('TsLeaveDeduction'), ('LeaveSystem'), ('LeaveCareerSystem'), ('LeaveRecord'), ('Movement'));
INSERT INTO AnlysDispSection SELECT AnlysItemSetupId, AnlysItemTypeId, AnlysItemSetupId FROM AnlysItemSetup;

INSERT INTO AnItemLookup VALUES
  ('PaySystem', 'BasicPay', 'Basic pay', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('PaySystem', 'TotalAllowance', 'Total allowance', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('PaySystem', 'OvertimePay', 'Overtime pay', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('PaySystem', 'ShiftPay', 'Shift pay', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('PaySystem', 'TotalReimbursement', 'Total reimbursement', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('PaySystem', 'GrossWage', 'Gross wage', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('PaySystem', 'TotalDeduction', 'Total deduction', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('PaySystem', 'NetWage', 'Net wage', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('PaySystem', 'WorkingDays', 'Working days', 'AnlysAmount2', 'AnlysFAmount2', 'AnlysDoubleValue2'),
  ('PaySystem', 'PayHeadCount', 'Head count', 'AnlysCount1', 'AnlysCount2', 'AnlysCount3'),
  ('PayElement', 'PayElementAmt', 'Amount', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('PayElement', 'PayElementUnits', 'Units', 'AnlysAmount2', 'AnlysFAmount2', 'AnlysDoubleValue2'),
  ('Allowance', 'AllowanceAmt', 'Amount', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('Deduction', 'DeductionAmt', 'Amount', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('Reimbursement', 'ReimbursementAmt', 'Amount', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('OTRecord', 'OTAmt', 'Overtime pay', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('OTRecord', 'OTHours', 'Overtime hours', 'AnlysAmount2', 'AnlysFAmount2', 'AnlysDoubleValue2'),
  ('OTRecord', 'FormulaOTRate', 'Overtime rate', 'AnlysDoubleValue3', '', ''),
  ('ShiftRecord', 'ShiftAmt', 'Shift pay', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('ShiftRecord', 'ShiftTimes', 'Shifts', 'AnlysAmount2', 'AnlysFAmount2', 'AnlysDoubleValue2'),
  ('ShiftRecord', 'FormulaShiftRate', 'Shift rate', 'AnlysDoubleValue3', '', ''),
  ('BankRecord', 'BankPaymentAmt', 'Payment amount', 'AnlysAmount1', 'AnlysFAmount1', 'AnlysDoubleValue1'),
  ('BankRecord', 'BankPaymentValue', 'Payment value', 'AnlysAmount2', 'AnlysFAmount2', 'AnlysDoubleValue2'),
  ('TsPayElement', 'TsPayElementAmt', 'Amount', 'AnlysAmount1', '', ''),
  ('TsPayElement', 'TsPayElementHours', 'Hours', 'AnlysAmount2', '', ''),
  ('TsAllowance', 'TsAllowanceAmt', 'Amount', 'AnlysAmount1', '', ''),
  ('TsDeduction', 'TsDeductionAmt', 'Amount', 'AnlysAmount1', '', ''),
  ('TsReimbursement', 'TsReimbursementAmt', 'Amount', 'AnlysAmount1', '', ''),
  ('TsOvertime', 'TsOvertimeAmt', 'Amount', 'AnlysAmount1', '', ''),
  ('TsOvertime', 'TsOvertimeHours', 'Hours', 'AnlysAmount2', '', ''),
  ('TsShift', 'TsShiftAmt', 'Amount', 'AnlysAmount1', '', ''),
  ('TsDetail', 'TsHours', 'Hours worked', 'AnlysAmount2', '', ''),
  ('TsDetail', 'TsAmount', 'Amount of the day', 'AnlysAmount1', '', ''),
  ('LeaveSystem', 'AnlLveBroughtForward', 'Annual leave brought forward', 'AnlysDoubleValue1', '', ''),
  ('LeaveSystem', 'AnlCurrLveEntitlement', 'Annual leave entitlement', 'AnlysDoubleValue1', '', ''),
  ('LeaveSystem', 'AnlLveTaken', 'Annual leave taken', 'AnlysDoubleValue1', '', ''),
  ('LeaveSystem', 'AnlLveBalance', 'Annual leave balance', 'AnlysDoubleValue1', '', ''),
  ('LeaveSystem', 'SickLveBroughtForward', 'Sick leave brought forward', 'AnlysDoubleValue1', '', ''),
  ('LeaveSystem', 'SickCurrLveEntitlement', 'Sick leave entitlement', 'AnlysDoubleValue1', '', ''),
  ('LeaveSystem', 'SickLveTaken', 'Sick leave taken', 'AnlysDoubleValue1', '', ''),
  ('LeaveSystem', 'SickLveBalance', 'Sick leave balance', 'AnlysDoubleValue1', '', ''),
  ('LeaveCareerSystem', 'AnlLveEarned', 'Annual leave earned', 'AnlysDoubleValue1', '', ''),
  ('LeaveRecord', 'LeaveDays', 'Days', 'AnlysDoubleValue1', '', ''),
  ('LeaveRecord', 'LastLeaveFrom', 'Last leave began', 'AnlysTimestamp1', '', ''),
  ('Movement', 'MovementOpening', 'Opening headcount', 'AnlysCount1', '', ''),
  ('Movement', 'MovementHired', 'Hired', 'AnlysCount1', '', ''),
  ('Movement', 'MovementConfirmed', 'Confirmed', 'AnlysCount1', '', ''),
  ('Movement', 'MovementIn', 'Transferred in', 'AnlysCount1', '', ''),
  ('Movement', 'MovementOut', 'Transferred out', 'AnlysCount1', '', ''),
  ('Movement', 'MovementCeased', 'Ceased', 'AnlysCount1', '', ''),
  ('Movement', 'MovementClosing', 'Closing headcount', 'AnlysCount1', '', '');

-- The bases, and the name that the values of each go by in a user log.
INSERT INTO AnlysKeyword VALUES
  ('Company', 'Company', 'CompanyId'), ('Department', 'Department', 'DepartmentId'),
  ('Section', 'Section', 'SectionId'), ('Position', 'Position', 'PositionId'),
  ('CostCentre', 'CostCentre', 'CostCentreId'),
  ('SalaryType', 'Dummy_BasisSalaryType', 'KeyWordId'),
  ('AgeByYear', 'Dummy_BasisAgeByYr', 'BasisAgeByYr'), ('AgeByMonth', 'Dummy_BasisAgeByMth', 'BasisAgeByMth'),
  ('ServiceByYear', 'Dummy_BasisSrvcYrByYr', 'BasisSrvcYrByYr'),
  ('ServiceByMonth', 'Dummy_BasisSrvcYrByMth', 'BasisSrvcYrByMth'),
  ('TotalWage', 'Dummy_BasisTotalWage', 'BasisTotalWage');
INSERT INTO SystemAttribute
  SELECT AnlysKeywordRef, AnlysKeywordTableId,
         CASE AnlysKeywordId WHEN 'CostCentre' THEN 'Cost Centre' WHEN 'SalaryType' THEN 'Salary Type'
           WHEN 'AgeByYear' THEN 'Age Group' WHEN 'AgeByMonth' THEN 'Age Group'
           WHEN 'ServiceByYear' THEN 'Years of Service' WHEN 'ServiceByMonth' THEN 'Years of Service'
           WHEN 'TotalWage' THEN 'Total Wage' ELSE AnlysKeywordId END
  FROM AnlysKeyword;

-- The table sets of employee reports.
INSERT INTO ExcelEmpRpt VALUES
  ('Employee', 'Employee', 'JOIN Personal ON Personal.PersonalSysId = Employee.PersonalSysId', ''),
  ('Personal', 'Personal', 'LEFT OUTER JOIN Employee ON Employee.PersonalSysId = Personal.PersonalSysId', ''),
  ('Family', 'Employee', 'JOIN Personal ON Personal.PersonalSysId = Employee.PersonalSysId',
   'LEFT OUTER JOIN Family ON Family.PersonalSysId = Personal.PersonalSysId'),
  ('PersonalFamily', 'Personal', 'LEFT OUTER JOIN Employee ON Employee.PersonalSysId = Personal.PersonalSysId',
   'LEFT OUTER JOIN Family ON Family.PersonalSysId = Personal.PersonalSysId'),
  ('Career', 'Employee', 'JOIN Personal ON Personal.PersonalSysId = Employee.PersonalSysId',
   'JOIN EmployeeCareer ON EmployeeCareer.EmployeeSysId = Employee.EmployeeSysId'),
  ('Training', 'Employee', 'JOIN Personal ON Personal.PersonalSysId = Employee.PersonalSysId',
   'JOIN EmployeeTraining ON EmployeeTraining.EmployeeSysId = Employee.EmployeeSysId'),
  ('Leave', 'Employee', 'JOIN Personal ON Personal.PersonalSysId = Employee.PersonalSysId',
   'JOIN LeaveRecordSum ON LeaveRecordSum.EmployeeSysId = Employee.EmployeeSysId');

INSERT INTO DatabaseFunction VALUES
  ('FGetEmployeeId', 1, 'SELECT EmployeeId FROM Employee WHERE EmployeeSysId = ?1'),
  -- The day the probation ends; for a day that the month does not have, its last.
  ('FGetConfirmationDue', 1,
   'SELECT CASE WHEN ProbationMonths > 0 THEN
               MIN(date(HireDate, ''+'' || ProbationMonths || '' months''),
                   date(HireDate, ''start of month'', ''+'' || (ProbationMonths + 1) || '' months'', ''-1 day'')) END
    FROM Employee WHERE EmployeeSysId = ?1'),
  ('FGetRetirementDue', 1,
   'SELECT date(Personal.DateOfBirth, ''+'' || CAST(SystemParameter.ParameterValue AS INTEGER) || '' years'')
    FROM Employee JOIN Personal ON Personal.PersonalSysId = Employee.PersonalSysId
         JOIN SystemParameter ON SystemParameter.ParameterId = ''RetirementAge''
    WHERE Employee.EmployeeSysId = ?1'),
  -- The basic rate and every fixed allowance.
  ('FGetEmployeeCurrentTotalWage', 1,
   'SELECT Employee.BasicRate + (SELECT TOTAL(Fixed.MonthlyAmount)
      FROM EmployeePayItem AS Fixed JOIN PayItem ON PayItem.PayItemId = Fixed.PayItemId
      WHERE Fixed.EmployeeSysId = Employee.EmployeeSysId AND PayItem.PayItemKind = ''Allowance'')
    FROM Employee WHERE Employee.EmployeeSysId = ?1'),
  ('FGetMVCCurrentAccPercent', 1,
   'SELECT (SELECT TOTAL(MVCPercent) FROM EmployeeMVC WHERE EmployeeMVC.EmployeeSysId = Employee.EmployeeSysId)
    FROM Employee WHERE Employee.EmployeeSysId = ?1'),
  ('FGetEmployeeKeyShiftTeam', 1,
   'SELECT ShiftTeamId FROM EmployeeShiftTeam WHERE EmployeeSysId = ?1 ORDER BY ShiftTeamFrom DESC LIMIT 1'),
  ('FGetEmployeeKeyCostCentre', 1,
   'SELECT CostCentreId FROM EmployeeKeyCostCentre WHERE EmployeeSysId = ?1');

-- A code's description in two steps: which code somebody has, and what it stands for. There are few codes, and the
-- values of a function are remembered, so hardly any code is looked up twice. A code that is not set is described
-- as '': a NULL would make a report group that no condition finds again.
INSERT INTO DatabaseFunction
  WITH CodeAttribute (Attribute, Description, CodeTable, CodeId, Owner) AS (VALUES
    ('BranchDesc', 'BranchDesc', 'Branch', 'BranchId', 'Employee'),
    ('CategoryDesc', 'CategoryDesc', 'Category', 'CategoryId', 'Employee'),
    ('CessationDesc', 'CessationDesc', 'CessationCode', 'CessationCodeId', 'Employee'),
    ('ClassificationDesc', 'ClassificationDesc', 'Classification', 'ClassificationId', 'Employee'),
    ('DepartmentDesc', 'DepartmentDesc', 'Department', 'DepartmentId', 'Employee'),
    ('EmpCode1Desc', 'EmpCode1Desc', 'EmpCode1', 'EmpCode1Id', 'Employee'),
    ('EmpCode2Desc', 'EmpCode2Desc', 'EmpCode2', 'EmpCode2Id', 'Employee'),
    ('EmpCode3Desc', 'EmpCode3Desc', 'EmpCode3', 'EmpCode3Id', 'Employee'),
    ('EmpCode4Desc', 'EmpCode4Desc', 'EmpCode4', 'EmpCode4Id', 'Employee'),
    ('EmpCode5Desc', 'EmpCode5Desc', 'EmpCode5', 'EmpCode5Id', 'Employee'),
    ('EmpLocation1Desc', 'EmpLocation1Desc', 'EmpLocation1', 'EmpLocation1Id', 'Employee'),
    ('EmpMaritalStatusDesc', 'MaritalStatusDesc', 'MaritalStatus', 'MaritalStatusId', 'Personal'),
    ('PositionDesc', 'PositionDesc', 'Position', 'PositionId', 'Employee'),
    ('EmpRaceDesc', 'RaceDesc', 'Race', 'RaceId', 'Personal'),
    ('EmpReligionDesc', 'ReligionDesc', 'Religion', 'ReligionId', 'Personal'),
    ('SalaryGradeDesc', 'SalaryGradeDesc', 'SalaryGrade', 'SalaryGradeId', 'Employee'),
    ('SectionDesc', 'SectionDesc', 'Section', 'SectionId', 'Employee'),
    ('EmpTitleDesc', 'TitleDesc', 'Title', 'TitleId', 'Personal'),
    ('BloodGroupDesc', 'BloodGroupDesc', 'BloodGroup', 'BloodGroupId', 'Personal'),
    ('IdentityTypeDesc', 'IdentityTypeDesc', 'IdentityType', 'IdentityTypeId', 'Personal'),
    ('PersonalTypeDesc', 'PersonalTypeDesc', 'PersonalType', 'PersonalTypeId', 'Personal'),
    ('PerMaritalStatusDesc', 'MaritalStatusDesc', 'MaritalStatus', 'MaritalStatusId', 'Personal'),
    ('PerRaceDesc', 'RaceDesc', 'Race', 'RaceId', 'Personal'),
    ('PerReligionDesc', 'ReligionDesc', 'Religion', 'ReligionId', 'Personal'),
    ('PerTitleDesc', 'TitleDesc', 'Title', 'TitleId', 'Personal')),
  Cases AS (
    SELECT group_concat(' WHEN ''' || Attribute || ''' THEN (SELECT ' || Description || ' FROM ' || CodeTable
                        || ' WHERE ' || CodeId || ' = ?2)', '') AS Texts,
           group_concat(' WHEN ''' || Attribute || ''' THEN Employee.' || CodeId, '')
             FILTER (WHERE Owner = 'Employee') AS EmployeeCodes,
           group_concat(' WHEN ''' || Attribute || ''' THEN Personal.' || CodeId, '')
             FILTER (WHERE Owner = 'Personal') AS PersonalCodes
    FROM CodeAttribute)
  SELECT 'FGetCodeText', 2, 'SELECT CASE ?1' || Texts || ' END' FROM Cases
  UNION ALL
  SELECT 'FGetCodeDescription', 2, 'SELECT COALESCE(FGetCodeText(?2, CASE ?2' || EmployeeCodes || '
    ELSE (SELECT CASE ?2' || PersonalCodes || ' END FROM Personal
          WHERE Personal.PersonalSysId = Employee.PersonalSysId) END), '''')
    FROM Employee WHERE Employee.EmployeeSysId = ?1' FROM Cases
  UNION ALL
  SELECT 'FGetCodeDescriptionByPersonal', 2, 'SELECT COALESCE(FGetCodeText(?2, CASE ?2' || PersonalCodes || '
    ELSE (SELECT CASE ?2' || EmployeeCodes || ' END FROM Employee
          WHERE Employee.PersonalSysId = Personal.PersonalSysId ORDER BY Employee.HireDate DESC LIMIT 1) END), '''')
    FROM Personal WHERE Personal.PersonalSysId = ?1' FROM Cases;
