-- What the head office changes between two receives of store 1000. May be run again.
--
-- The change time lies a second ahead: a receive that began in this very second has already taken
-- its stamp and would otherwise never ask for these rows.

SET NAMES utf8mb4;
SET @changed = NOW() + INTERVAL 1 SECOND;
START TRANSACTION;

-- Categories: one renamed, one taken down, one new, one new but not shown yet.
UPDATE KIND SET KD_NAME = '찌개·뚝배기' WHERE KD_ID = '101000000000000';
UPDATE KIND SET KD_CKSD = 'N' WHERE KD_ID = '116000000000000';
REPLACE INTO KIND (KD_ID, KD_NAME, KD_ORDER, KD_CKSD, KD_CKGU, KD_LVL) VALUES
  ('119000000000000', '샐러드', 18, 'Y', 'A420', 1),
  ('211000000000000', '전통 과자', 33, 'N', 'A402', 1);

-- Products: dearer meat, one discontinued, one back on sale, two new, one new and already gone.
UPDATE PR SET PR_OP1 = 15900, PR_DATE = @changed WHERE PR_CODE = '104001';
UPDATE PR SET PR_OP1 = 17500, PR_OP2 = 16500, PR_OP3 = 18500, PR_DATE = @changed
  WHERE PR_CODE = '104002';
UPDATE PR SET PR_OP1 = 45000, PR_OP0 = 26100.5, PR_DATE = @changed WHERE PR_CODE = '104003';
UPDATE PR SET PR_END = '2', PR_DATE = @changed WHERE PR_CODE = '107003';
UPDATE PR SET PR_END = '0', PR_DATE = @changed WHERE PR_CODE = '106002';
UPDATE PR SET PR_NAME = '제육볶음 (국내산)', PR_POINTGU = ' 3 ', PR_DATE = @changed
  WHERE PR_CODE = '105001';
REPLACE INTO PR (PR_CODE, PR_NAME, KD_ID, PR_DATE, PR_OP1, PR_OP2, PR_OP3, PR_OP0, PR_END, PR_TAX,
  PR_VM, PR_DCGU, PR_SETGU, PR_COSGU, PR_OPTGU, PR_CPRGU, PR_BCODE, PR_POINTGU) VALUES
  ('119001', '수삼 샐러드', '119000000000000', @changed, 12000, 11500, 12500, 4300, '0', 1, 'C6X', 1, 0, 0, 0, 0, NULL, '5'),
  ('119002', '해초 샐러드', '119000000000000', @changed, 9000, 8500, 9500, 2900, '0', 1, '', 1, 0, 0, 0, 0, NULL, NULL),
  ('119003', '과일 샐러드', '119000000000000', @changed, 9000, 8500, 9500, 3100, '2', 1, 'C6X', 1, 0, 0, 0, 0, NULL, '5');
REPLACE INTO PRGU (PR_CODE, PRGU_CODE) VALUES ('119001', 'P119'), ('119002', 'P119');
REPLACE INTO CTP (RCT_CODE, CT_CODE, PR_CODE, CTP_UP, CTP_DATE) VALUES
  ('1000', '1000000000000000', '104001', 16500, @changed),
  ('1000', '1000000000000000', '119001', 12500, @changed);
REPLACE INTO PRR (RCT_CODE, PR_CODE, PRR_END, PRR_DATE) VALUES
  ('1000', '103003', '1', @changed), ('1000', '201002', '0', @changed);

-- Courses, sets, options: a row less, a row more, a row changed.
DELETE FROM PRC WHERE PR_CODE = '109002' AND PRC_CODE = '205002';
REPLACE INTO PRC (PR_CODE, PRC_CODE, PRC_NAME, PRC_QTY, PRC_INTERVAL, PRC_NO) VALUES
  ('109001', '119001', '수삼 샐러드', 0.5, 0, 1), ('109001', '101001', '작은 찌개', 1, 10, 7);
DELETE FROM PRS WHERE PR_CODE = '113002' AND PRS_CODE = '203001';
REPLACE INTO PRS (PR_CODE, PRS_CODE, PRS_NAME, PRS_QTY, PRS_NO) VALUES
  ('113002', '203002', '탄산음료', 4, 4), ('113001', '207001', '공기밥', 3, 3);
DELETE FROM PRO WHERE PR_CODE = '101001' AND PROP_CODE = '0022';
REPLACE INTO PRO (PR_CODE, PROP_CODE) VALUES ('119001', '0031'), ('119002', '0031');
REPLACE INTO PROP (PROP_CODE, PROP_NAME) VALUES ('0031', '드레싱 따로'), ('0004', '불맛으로');

-- Staff: one left, one no longer uses the counter, one new; a new password that the counters,
-- which know the user already, leave alone.
UPDATE ST SET ST_OTDATE = '2026-11-15' WHERE ST_CODE = '1000005';
UPDATE ST SET ST_ASPLVL = '0' WHERE ST_CODE = '1000006';
UPDATE ST SET ST_POSPWD = '9999', ST_DUTY = '총주방장' WHERE ST_CODE = '1000003';
REPLACE INTO ST (ST_CODE, RCT_CODE, ST_NAME, ST_SECT, ST_INDATE, ST_DUTY, ST_POSID, ST_POSPWD,
  ST_POSLVL, ST_ASPLVL) VALUES
  ('1000012', '1000', '연두리', '0', '2026-11-16', '홀', '012', '2468', '1', '1');

-- Members and trade partners: points, a member gone, one new of each.
UPDATE CT SET CT_POINT = 180, CT_UPOINT = 70, CT_VISITN = 8, CT_VDATE = NOW(), CT_DATE = @changed
  WHERE CT_CODE = '1000900000000001';
UPDATE CT SET CT_END = '1', CT_DATE = @changed WHERE CT_CODE = '1000900000000004';
UPDATE CT SET CT_PHONE = '031-000-0102', CT_DATE = @changed WHERE CT_CODE = '2000000000000001';
REPLACE INTO CT (CT_CODE, CT_GUBUN, CT_NAME, CT_PHONE, CT_END, CT_POINT, CT_UPOINT, CT_VISITN,
  CT_VDATE, CT_MSG, CT_DATE, GP_CODE) VALUES
  ('1000900000000007', '1', '새봄이', '', '0', 0, 0, 0, NULL, '소개로 가입', @changed, 'G100'),
  ('2000000000000007', '0', '가온 채소', '031-000-0007', '0', 0, 0, 0, NULL, NULL, @changed, 'G010');
REPLACE INTO CTMEM (CT_CODE, CT_LVL, CT_SEX, CT_BIRTH, CT_SECT, CT_MPHONE, CT_INCODE, CT_INNAME) VALUES
  ('1000900000000007', '1', 1, '1997-03-20', '0', '010-0000-9007', '1000900000000001', '고은별');
REPLACE INTO CTCOM (CT_CODE, CT_DANLV, CT_CEOPHONE, CT_ST, CT_KD) VALUES
  ('2000000000000007', '1', '010-0000-0007', '도매', '채소');

-- Account titles.
UPDATE FN SET FN_NAME = '배달 중개 수수료', FN_DATE = @changed WHERE FN_CD1 = '54' AND FN_CD2 = '02';
REPLACE INTO FN (FN_CD1, FN_CD2, FN_NAME, FN_SA, FN_SB, FN_SC, FN_SD, FN_SE, FN_CUST, FN_SNAME,
  FN_FIND, FN_DATE) VALUES
  ('41', '06', '밀키트 매출', 4, 1, 0, 1, '0', '0', '밀키트', '4106', @changed);

-- Settings and the store itself.
UPDATE BAS SET BAS_OP2 = '3', BAS_DATE = @changed WHERE BAS_CODE = 'ZO02';
UPDATE RCTBAS SET BAS_OP1 = '주차 3시간 무료', BAS_DATE = @changed
  WHERE RCT_CODE = '1000' AND BAS_CODE = 'ZO08';
UPDATE RCTI SET RCTI_CPHONE = '02-000-1100', RCTI_SEAT = 90 WHERE RCT_CODE = '1000';

COMMIT;
