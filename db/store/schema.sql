-- The embedded store database, for counters without an Access database.
--
-- Codes compare without letter case (NOCASE), as they do in Access, where trailing blanks do not
-- count either. One code cannot have both: BAS_CODE is stored with a trailing blank and looked up
-- without it, hence RTRIM, and its letter case counts. No built-in collation does both, and with one
-- of our own SQLite's shell, and every other program that reads the store, would fail on BAS ("no
-- such collation sequence").

-- Menu categories. The code is deliberately not unique: a category without a kind comes in both
-- halves of the head office's query, and a new one is inserted twice.
CREATE TABLE KIND (
  KIND_CODE TEXT NOT NULL COLLATE NOCASE,
  KIND_NAME TEXT,
  KIND_ORDER INTEGER,
  KIND_VISIBLE INTEGER -- 0 = visible
);
CREATE INDEX KIND_KEY ON KIND (KIND_CODE);

-- Products.
CREATE TABLE PR (
  PR_CODE TEXT NOT NULL COLLATE NOCASE PRIMARY KEY,
  PR_NAME TEXT,
  KIND_CODE TEXT COLLATE NOCASE,
  PR_DATE TEXT,
  PR_PRICE1 NUMERIC,
  PR_PRICE2 NUMERIC,
  PR_PRICE3 NUMERIC,
  PR_COST NUMERIC,
  PR_CK INTEGER,
  PR_TAX NUMERIC,
  PR_IVCK INTEGER,
  PR_DCGU INTEGER,
  PR_SETGU INTEGER,
  PR_COSGU INTEGER,
  PR_OPTGU INTEGER,
  PR_CPRGU INTEGER,
  PR_VISIBLE INTEGER,
  PR_BARCODE TEXT,
  PR_POINT TEXT
);

-- Course menus: the dishes of a course.
CREATE TABLE PRC (
  PR_CODE TEXT NOT NULL COLLATE NOCASE,
  PRC_CODE TEXT NOT NULL COLLATE NOCASE,
  PRC_NAME TEXT,
  PRC_QTY NUMERIC,
  PRC_INTERVAL NUMERIC,
  PRC_NO NUMERIC,
  PRC_RCV TEXT(1), -- '1' received in the current run, '9' before
  PRIMARY KEY (PR_CODE, PRC_CODE)
);

-- Option menus: what may be chosen with a product.
CREATE TABLE PRO (
  PR_CODE TEXT NOT NULL COLLATE NOCASE,
  PROP_CODE TEXT NOT NULL COLLATE NOCASE,
  PROP_NAME TEXT,
  PRO_RCV TEXT(1),
  PRIMARY KEY (PR_CODE, PROP_CODE)
);

-- Set menus: the items of a set. Deliberately not unique: a product with several price rows at the
-- head office delivers its items as often.
CREATE TABLE PRS (
  PR_CODE TEXT NOT NULL COLLATE NOCASE,
  PRS_CODE TEXT NOT NULL COLLATE NOCASE,
  PRS_NAME TEXT,
  PRS_QTY NUMERIC,
  PRS_NO NUMERIC,
  PRS_RCV TEXT(1)
);
CREATE INDEX PRS_KEY ON PRS (PR_CODE, PRS_CODE);

-- Option names.
CREATE TABLE PROP (
  PROP_CODE TEXT NOT NULL COLLATE NOCASE PRIMARY KEY,
  PROP_NAME TEXT
);

-- People who use the point of sale.
CREATE TABLE USR (
  USR_CODE TEXT NOT NULL COLLATE NOCASE PRIMARY KEY,
  USR_NAME TEXT,
  USR_SEX INTEGER,
  USR_CARD TEXT,
  USR_NO TEXT,
  USR_BIRTH TEXT,
  USR_BIRCHK INTEGER,
  USR_PHONE TEXT,
  USR_CPHONE TEXT,
  USR_EMAIL TEXT,
  USR_ZIP TEXT,
  USR_ADDR1 TEXT,
  USR_ADDR2 TEXT,
  USR_FDATE TEXT,
  USR_EDATE TEXT,
  USR_GU TEXT,
  USR_DUTY TEXT,
  USR_DISP INTEGER,
  USR_ID TEXT,
  USR_PASS TEXT,
  USR_LVL TEXT,
  USR_ULVL TEXT,
  USR_ATTENDTIME TEXT,
  USR_TIMEPAY TEXT,
  USR_ASPLVL TEXT
);

-- Members (CT_GUBUN 0) and trade partners (1).
CREATE TABLE CT (
  CT_CODE TEXT NOT NULL COLLATE NOCASE PRIMARY KEY,
  CT_LVL TEXT,
  CT_NAME TEXT,
  CT_SEX INTEGER,
  CT_NO TEXT,
  CT_BIRTH TEXT,
  CT_BIRCHK INTEGER,
  CT_PHONE TEXT,
  CT_CPHONE TEXT,
  CT_EMAIL TEXT,
  CT_EMCHK INTEGER,
  CT_ZIP TEXT,
  CT_ADDR1 TEXT,
  CT_ADDR2 TEXT,
  CT_CK INTEGER,
  CT_TPOINT NUMERIC,
  CT_RPOINT NUMERIC,
  CT_UPOINT NUMERIC,
  CT_VISITN INTEGER,
  CT_SALE NUMERIC,
  CT_MISU NUMERIC,
  CT_VISITD TEXT,
  CT_MEMO TEXT,
  CT_DATE TEXT,
  CT_GU TEXT,
  CT_DCHK INTEGER,
  CT_FDATE TEXT,
  CT_EDATE TEXT,
  CT_ZIPD TEXT,
  CT_ADDRD1 TEXT,
  CT_ADDRD2 TEXT,
  CT_JOB TEXT,
  CT_DAY TEXT,
  CT_ABO TEXT,
  CT_HOBBY TEXT,
  CT_INCODE TEXT,
  CT_INNAME TEXT,
  CT_GUBUN INTEGER,
  CT_ST TEXT,
  CT_KD TEXT
);

-- Account titles; FN_KEY is FN_CD1 followed by FN_CD2. Deliberately not unique: 41 with 01 reads like
-- 4 with 101, and where both are new both are inserted.
CREATE TABLE FN (
  FN_CD1 TEXT COLLATE NOCASE,
  FN_CD2 TEXT COLLATE NOCASE,
  FN_NAME TEXT,
  FN_SA TEXT,
  FN_SB TEXT,
  FN_SC TEXT,
  FN_SD TEXT,
  FN_SE TEXT,
  FN_CUST TEXT,
  FN_SNAME TEXT,
  FN_FIND TEXT,
  FN_DATE TEXT,
  FN_KEY TEXT NOT NULL COLLATE NOCASE
);
CREATE INDEX FN_KEY ON FN (FN_KEY);

-- Settings.
CREATE TABLE BAS (
  BAS_CODE TEXT NOT NULL COLLATE RTRIM PRIMARY KEY,
  BS_NAME1 TEXT,
  BS_NAME2 TEXT,
  BS_M1 TEXT,
  BS_M2 TEXT,
  BS_M3 TEXT,
  BS_M4 TEXT
);

-- Configuration of the store, in numbered rows per section.
CREATE TABLE CF (
  CF_PART TEXT NOT NULL COLLATE NOCASE,
  CF_IDX INTEGER NOT NULL,
  CF_CONTENTS TEXT,
  PRIMARY KEY (CF_PART, CF_IDX)
);

-- When each data group was last received: one row, written by the first receive.
CREATE TABLE UPD (
  UPD_PR TEXT,
  UPD_CT TEXT,
  UPD_USR TEXT,
  UPD_BAS TEXT,
  UPD_FN TEXT
);

-- The store's particulars, which a receive updates but never creates: name, registration number,
-- representative, address, telephone, business type, business item; 13 = seats.
INSERT INTO CF (CF_PART, CF_IDX, CF_CONTENTS) VALUES
  ('회사', 1, ''), ('회사', 2, ''), ('회사', 3, ''), ('회사', 4, ''), ('회사', 5, ''),
  ('회사', 6, ''), ('회사', 7, ''), ('회사', 13, '');

-- Whether set menus are left out of a receive: 0 receives them.
INSERT INTO CF (CF_PART, CF_IDX, CF_CONTENTS) VALUES ('영업3', 1, '0');
