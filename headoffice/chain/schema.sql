-- The head office database: every table a counter reads, and POS, which it reports to.
--
-- Runs on MariaDB 10.5 and later in whatever database is current; drops what it replaces. Needs a
-- sql_mode without NO_ZERO_DATE, STRICT_* and PIPES_AS_CONCAT: dates may be '0000-00-00', and the
-- counters' queries use || as OR.
--
-- Change times are datetime. A counter that has never received compares them with '', which
-- MariaDB reads as the zero date: every row with a real date passes. MySQL 8 refuses that.
--
-- The flag columns mix char and tinyint as they grew; the counters read all of them as text.

SET NAMES utf8mb4;

DROP TABLE IF EXISTS KIND, PR, PRGU, CTP, PRR, PRC, PRO, PRS, PROP, ST, CT, CTMEM, CTCOM, FN,
  RCT, RCTI, RCTBAS, BAS, POS;

-- Stores ------------------------------------------------------------------------------------

CREATE TABLE RCT (
  RCT_CODE   char(4)      NOT NULL,
  RCT_NAME   varchar(50)  NOT NULL,
  RCT_NO     varchar(12)  NULL      COMMENT 'business registration number, with or without dashes',
  RCT_CEO    varchar(30)  NULL,
  RCT_SADDR1 varchar(100) NULL,
  RCT_SADDR2 varchar(100) NULL,
  RCT_KD     varchar(30)  NULL      COMMENT 'business type',
  RCT_ST     varchar(30)  NULL      COMMENT 'business item',
  PRIMARY KEY (RCT_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE RCTI (
  RCT_CODE    char(4)     NOT NULL,
  RCTI_CPHONE varchar(20) NULL,
  RCTI_SEAT   smallint    NULL,
  PRIMARY KEY (RCT_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE POS (
  RCT_CODE          char(4)     NOT NULL,
  POS_ID            varchar(10) NOT NULL,
  RECEIVE_VER       varchar(20) NOT NULL DEFAULT '',
  RECEIVE_VER_SDATE datetime    NULL,
  PRIMARY KEY (RCT_CODE, POS_ID)
) DEFAULT CHARSET = utf8mb4;

-- Menu --------------------------------------------------------------------------------------

CREATE TABLE KIND (
  KD_ID    char(15)    NOT NULL COMMENT 'levels of three digits; 0...0 is the placeholder',
  KD_NAME  varchar(40) NOT NULL,
  KD_ORDER int         NULL,
  KD_CKSD  char(1)     NULL     COMMENT 'Y shown at the counters',
  KD_CKGU  char(4)     NULL     COMMENT 'A402 sales, A420 menu, A450 purchasing',
  KD_LVL   tinyint     NOT NULL DEFAULT 1,
  PRIMARY KEY (KD_ID)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE PR (
  PR_CODE    varchar(20)   NOT NULL,
  PR_NAME    varchar(60)   NOT NULL,
  KD_ID      char(15)      NOT NULL,
  PR_DATE    datetime      NULL     COMMENT 'last change',
  PR_OP1     double        NOT NULL DEFAULT 0 COMMENT 'list price',
  PR_OP2     double        NOT NULL DEFAULT 0 COMMENT 'take-out price',
  PR_OP3     double        NOT NULL DEFAULT 0 COMMENT 'delivery price',
  PR_OP0     decimal(12,2) NOT NULL DEFAULT 0 COMMENT 'cost',
  PR_END     char(1)       NOT NULL DEFAULT '0' COMMENT '0 on sale, 1 paused, 2 discontinued',
  PR_TAX     tinyint       NOT NULL DEFAULT 0,
  PR_VM      varchar(10)   NULL     COMMENT 'stock method; empty and C6X count stock',
  PR_DCGU    tinyint       NULL,
  PR_SETGU   tinyint       NULL,
  PR_COSGU   tinyint       NULL,
  PR_OPTGU   tinyint       NULL,
  PR_CPRGU   tinyint       NULL,
  PR_BCODE   varchar(20)   NULL,
  PR_POINTGU varchar(5)    NULL     COMMENT 'points in percent, typed by hand',
  PRIMARY KEY (PR_CODE),
  KEY PR_KD_ID (KD_ID)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE PRGU (
  PR_CODE   varchar(20) NOT NULL,
  PRGU_CODE char(4)     NULL,
  PRIMARY KEY (PR_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE CTP (
  RCT_CODE char(4)     NOT NULL,
  CT_CODE  char(16)    NOT NULL COMMENT '1000000000000000 for the price at the counter',
  PR_CODE  varchar(20) NOT NULL,
  CTP_UP   double      NULL,
  CTP_DATE datetime    NULL,
  PRIMARY KEY (RCT_CODE, CT_CODE, PR_CODE),
  KEY CTP_PR_CODE (PR_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE PRR (
  RCT_CODE char(4)     NOT NULL,
  PR_CODE  varchar(20) NOT NULL,
  PRR_END  char(1)     NULL     COMMENT '0 handled by the store',
  PRR_DATE datetime    NULL,
  PRIMARY KEY (RCT_CODE, PR_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE PRC (
  PR_CODE      varchar(20)  NOT NULL,
  PRC_CODE     varchar(20)  NOT NULL,
  PRC_NAME     varchar(60)  NOT NULL,
  PRC_QTY      decimal(8,2) NOT NULL DEFAULT 1,
  PRC_INTERVAL smallint     NOT NULL DEFAULT 0 COMMENT 'minutes after the dish before',
  PRC_NO       smallint     NOT NULL DEFAULT 0,
  PRIMARY KEY (PR_CODE, PRC_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE PRS (
  PR_CODE  varchar(20)  NOT NULL,
  PRS_CODE varchar(20)  NOT NULL,
  PRS_NAME varchar(60)  NOT NULL,
  PRS_QTY  decimal(8,2) NOT NULL DEFAULT 1,
  PRS_NO   smallint     NOT NULL DEFAULT 0,
  PRIMARY KEY (PR_CODE, PRS_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE PROP (
  PROP_CODE varchar(10) NOT NULL,
  PROP_NAME varchar(40) NOT NULL,
  PRIMARY KEY (PROP_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE PRO (
  PR_CODE   varchar(20) NOT NULL,
  PROP_CODE varchar(10) NOT NULL,
  PRIMARY KEY (PR_CODE, PROP_CODE)
) DEFAULT CHARSET = utf8mb4;

-- People and accounts -----------------------------------------------------------------------

CREATE TABLE ST (
  ST_CODE    varchar(10)  NOT NULL,
  RCT_CODE   char(4)      NOT NULL,
  ST_NAME    varchar(30)  NOT NULL,
  ST_CARD    varchar(20)  NULL,
  ST_NO      varchar(20)  NULL,
  ST_BIRTH   date         NULL,
  ST_SECT    char(1)      NOT NULL DEFAULT '0' COMMENT 'birthday: 0 solar, 1 lunar',
  ST_PHONE   varchar(20)  NULL,
  ST_HPHONE  varchar(20)  NULL,
  ST_ZIP     varchar(7)   NULL,
  ST_ADDR1   varchar(100) NULL,
  ST_ADDR2   varchar(100) NULL,
  ST_INDATE  date         NULL,
  ST_OTDATE  date         NULL,
  ST_DUTY    varchar(20)  NULL,
  ST_POSID   varchar(10)  NULL,
  ST_POSPWD  varchar(20)  NULL,
  ST_POSLVL  char(1)      NULL,
  ST_ATDTIME varchar(10)  NULL,
  ST_ATDPAY  varchar(10)  NULL,
  ST_ASPLVL  char(1)      NULL     COMMENT '0 not a user of the counter',
  PRIMARY KEY (ST_CODE),
  KEY ST_RCT_CODE (RCT_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE CT (
  CT_CODE   char(16)     NOT NULL,
  CT_GUBUN  char(1)      NOT NULL COMMENT '1 member, 0 trade partner',
  CT_NAME   varchar(50)  NULL,
  CT_JUMIN  varchar(14)  NULL     COMMENT 'resident or business registration number',
  CT_PHONE  varchar(20)  NULL,
  CT_MAIL   varchar(60)  NULL,
  CT_ZIP    varchar(7)   NULL,
  CT_ADDR1  varchar(100) NULL,
  CT_ADDR2  varchar(100) NULL,
  CT_END    char(1)      NULL,
  CT_POINT  int          NULL     COMMENT 'points left',
  CT_UPOINT int          NULL     COMMENT 'points used',
  CT_VISITN int          NULL,
  CT_VDATE  datetime     NULL     COMMENT 'last visit',
  CT_MSG    text         NULL,
  CT_DATE   datetime     NULL     COMMENT 'last change',
  GP_CODE   varchar(4)   NULL,
  PRIMARY KEY (CT_CODE),
  KEY CT_CT_DATE (CT_DATE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE CTMEM (
  CT_CODE    char(16)     NOT NULL,
  CT_LVL     char(1)      NULL,
  CT_SEX     tinyint      NULL,
  CT_BIRTH   varchar(10)  NULL,
  CT_SECT    char(1)      NULL,
  CT_MPHONE  varchar(20)  NULL,
  CT_MAILCK  tinyint      NULL,
  CT_DMZIP   varchar(7)   NULL,
  CT_DMADDR1 varchar(100) NULL,
  CT_DMADDR2 varchar(100) NULL,
  CT_JOB     varchar(20)  NULL,
  CT_DAY     varchar(10)  NULL     COMMENT 'wedding anniversary',
  CT_ABO     varchar(2)   NULL,
  CT_HOBBY   varchar(20)  NULL,
  CT_INCODE  char(16)     NULL     COMMENT 'introduced by',
  CT_INNAME  varchar(50)  NULL,
  PRIMARY KEY (CT_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE CTCOM (
  CT_CODE     char(16)    NOT NULL,
  CT_DANLV    char(1)     NULL     COMMENT 'price level',
  CT_CEOPHONE varchar(20) NULL,
  CT_ST       varchar(30) NULL,
  CT_KD       varchar(30) NULL,
  PRIMARY KEY (CT_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE FN (
  FN_CD1   char(2)     NOT NULL,
  FN_CD2   char(2)     NOT NULL,
  FN_NAME  varchar(40) NOT NULL,
  FN_SA    tinyint     NULL,
  FN_SB    tinyint     NULL,
  FN_SC    tinyint     NULL,
  FN_SD    tinyint     NULL,
  FN_SE    char(1)     NULL,
  FN_CUST  char(1)     NULL,
  FN_SNAME varchar(20) NULL,
  FN_FIND  varchar(4)  NULL,
  FN_DATE  datetime    NULL,
  PRIMARY KEY (FN_CD1, FN_CD2)
) DEFAULT CHARSET = utf8mb4;

-- Settings ----------------------------------------------------------------------------------

CREATE TABLE BAS (
  BAS_CODE  varchar(10)  NOT NULL,
  BAS_NAME1 varchar(40)  NULL,
  BAS_NAME2 varchar(100) NULL,
  BAS_OP1   varchar(50)  NULL,
  BAS_OP2   varchar(50)  NULL,
  BAS_OP3   varchar(50)  NULL,
  BAS_OP4   varchar(50)  NULL,
  BAS_DATE  datetime     NULL,
  PRIMARY KEY (BAS_CODE)
) DEFAULT CHARSET = utf8mb4;

CREATE TABLE RCTBAS (
  RCT_CODE  char(4)      NOT NULL,
  BAS_CODE  varchar(10)  NOT NULL,
  BAS_NAME1 varchar(40)  NULL,
  BAS_NAME2 varchar(100) NULL,
  BAS_OP1   varchar(50)  NULL,
  BAS_OP2   varchar(50)  NULL,
  BAS_OP3   varchar(50)  NULL,
  BAS_OP4   varchar(50)  NULL,
  BAS_DATE  datetime     NULL,
  PRIMARY KEY (RCT_CODE, BAS_CODE)
) DEFAULT CHARSET = utf8mb4;
