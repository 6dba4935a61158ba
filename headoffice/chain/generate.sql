-- The bulk of the sample chain, on top of data.sql: about 600 products with their store prices
-- and availability, 3,000 members, 60 trade partners, 80 staff. The same rows every time: what
-- looks like chance comes from CRC32 of a key.

SET NAMES utf8mb4;

CREATE TEMPORARY TABLE CHAIN_NUMBER (N int NOT NULL PRIMARY KEY);
INSERT INTO CHAIN_NUMBER (N)
  WITH RECURSIVE DIGIT (D) AS (SELECT 0 UNION ALL SELECT D + 1 FROM DIGIT WHERE D < 9)
  SELECT A.D + 10 * B.D + 100 * C.D + 1000 * T.D
  FROM DIGIT A, DIGIT B, DIGIT C, DIGIT T WHERE T.D < 3;

-- Products ----------------------------------------------------------------------------------

CREATE TEMPORARY TABLE CHAIN_DISH (
  KD    char(3)     NOT NULL,
  NO    int         NOT NULL COMMENT 'within its category, from 0',
  NAME  varchar(40) NOT NULL,
  PRICE int         NOT NULL,
  SERVE char(1)     NOT NULL COMMENT 'which of the servings below'
) DEFAULT CHARSET = utf8mb4;

INSERT INTO CHAIN_DISH (KD, NO, NAME, PRICE, SERVE) VALUES
  ('101', 0, '돼지 김치찌개', 9000, 'B'), ('101', 1, '참치 김치찌개', 9000, 'B'),
  ('101', 2, '해물 된장찌개', 9500, 'B'), ('101', 3, '고추장찌개', 9500, 'B'),
  ('101', 4, '동태찌개', 11000, 'B'), ('101', 5, '부대찌개', 10500, 'B'),
  ('102', 0, '만두전골', 28000, 'B'), ('102', 1, '곱창전골', 36000, 'B'),
  ('102', 2, '두부전골', 26000, 'B'), ('102', 3, '낙지전골', 39000, 'B'),
  ('103', 0, '설렁탕', 11000, 'B'), ('103', 1, '곰탕', 12000, 'B'),
  ('103', 2, '육개장', 10500, 'B'), ('103', 3, '삼계탕', 16000, 'B'),
  ('103', 4, '순대국밥', 10000, 'B'), ('103', 5, '콩나물국밥', 8500, 'B'),
  ('103', 6, '추어탕', 12000, 'B'),
  ('104', 0, '목살구이', 15000, 'G'), ('104', 1, '항정살', 17000, 'G'),
  ('104', 2, '소갈비살', 29000, 'G'), ('104', 3, '차돌박이', 24000, 'G'),
  ('104', 4, '닭갈비', 14000, 'G'), ('104', 5, '오리 주물럭', 18000, 'G'),
  ('104', 6, '고등어구이', 12000, 'G'),
  ('105', 0, '낙지볶음', 15000, 'B'), ('105', 1, '닭볶음', 13000, 'B'),
  ('105', 2, '주꾸미볶음', 14500, 'B'), ('105', 3, '순대볶음', 12000, 'B'),
  ('106', 0, '아귀찜', 42000, 'B'), ('106', 1, '코다리조림', 13000, 'B'),
  ('106', 2, '간장찜닭', 28000, 'B'), ('106', 3, '두부조림', 9500, 'B'),
  ('107', 0, '바지락 칼국수', 10000, 'B'), ('107', 1, '들깨 칼국수', 10500, 'B'),
  ('107', 2, '잔치국수', 7500, 'B'), ('107', 3, '쫄면', 8500, 'B'),
  ('107', 4, '막국수', 9500, 'B'), ('107', 5, '콩국수', 10500, 'B'),
  ('108', 0, '육회비빔밥', 14000, 'B'), ('108', 1, '제육덮밥', 9500, 'B'),
  ('108', 2, '오징어덮밥', 10500, 'B'), ('108', 3, '회덮밥', 13500, 'B'),
  ('108', 4, '열무비빔밥', 9000, 'B'),
  ('110', 0, '김치전', 12000, 'P'), ('110', 1, '감자전', 13000, 'P'),
  ('110', 2, '녹두전', 14000, 'P'), ('110', 3, '모둠전', 22000, 'P'),
  ('111', 0, '떡볶이', 6500, 'P'), ('111', 1, '김밥', 4500, 'P'),
  ('111', 2, '군만두', 7500, 'P'), ('111', 3, '쫀드기튀김', 5000, 'P'),
  ('112', 0, '냉이 된장국', 9500, 'P'), ('112', 1, '전어구이', 19000, 'P'),
  ('114', 0, '점심 생선정식', 10900, 'P'), ('114', 1, '점심 불고기정식', 10900, 'P'),
  ('115', 0, '소불고기 도시락', 9900, 'P'), ('115', 1, '제육 도시락', 8900, 'P'),
  ('116', 0, '어린이 돈가스', 7500, 'P'), ('116', 1, '어린이 볶음밥', 6500, 'P'),
  ('202', 0, '동동주', 7000, 'D'), ('202', 1, '복분자주', 12000, 'D'),
  ('203', 0, '매실 음료', 3000, 'D'), ('203', 1, '배 음료', 3000, 'D'),
  ('204', 0, '대추차', 5000, 'D'), ('204', 1, '드립 커피', 4000, 'D'),
  ('205', 0, '쑥 아이스크림', 4000, 'D'), ('210', 0, '흑맥주', 8000, 'D');

CREATE TEMPORARY TABLE CHAIN_SERVING (
  SERVE char(1)     NOT NULL,
  V     int         NOT NULL,
  NAME  varchar(20) NOT NULL,
  RATE  int         NOT NULL COMMENT 'percent of the price',
  EXTRA int         NOT NULL
) DEFAULT CHARSET = utf8mb4;

INSERT INTO CHAIN_SERVING (SERVE, V, NAME, RATE, EXTRA) VALUES
  ('B', 0, '', 100, 0), ('B', 1, ' 곱빼기', 100, 2000), ('B', 2, ' (순한 맛)', 100, 0),
  ('B', 3, ' (매운 맛)', 100, 0), ('B', 4, ' (포장)', 100, -500), ('B', 5, ' (2인)', 190, 0),
  ('B', 6, '+공기밥', 100, 1000), ('B', 7, ' (점심)', 90, 0),
  ('G', 0, ' 1인분', 100, 0), ('G', 1, ' 2인분', 200, 0), ('G', 2, ' 3인분', 290, 0),
  ('G', 3, ' (반)', 60, 0), ('G', 4, ' (포장)', 100, -1000), ('G', 5, '+된장찌개', 100, 5000),
  ('G', 6, '+냉면', 100, 6000), ('G', 7, ' (점심)', 90, 0),
  ('P', 0, '', 100, 0), ('P', 1, ' (반)', 60, 0), ('P', 2, ' (대)', 150, 0),
  ('P', 3, ' (포장)', 100, -500), ('P', 4, ' [2개]', 195, 0), ('P', 5, ' & 음료', 100, 2000),
  ('P', 6, '+국물', 100, 1500), ('P', 7, ' 할인 10%', 90, 0),
  ('D', 0, '', 100, 0), ('D', 1, ' (큰 잔)', 100, 1000), ('D', 2, ' (작은 잔)', 100, -500),
  ('D', 3, ' 2잔', 200, 0), ('D', 4, ' (무설탕)', 100, 0), ('D', 5, ' (포장)', 100, -500),
  ('D', 6, ' 4잔', 380, 0), ('D', 7, ' (직접 담금)', 120, 0);

INSERT INTO PR (PR_CODE, PR_NAME, KD_ID, PR_DATE, PR_OP1, PR_OP2, PR_OP3, PR_OP0, PR_END, PR_TAX,
  PR_VM, PR_DCGU, PR_SETGU, PR_COSGU, PR_OPTGU, PR_CPRGU, PR_BCODE, PR_POINTGU)
SELECT CODE, NAME, KD_ID,
  '2022-01-03 08:00:00' + INTERVAL H % 1500 DAY + INTERVAL H % 36000 SECOND,
  PRICE, IF(H % 5 = 0, 0, PRICE - 500), IF(H % 4 = 0, 0, PRICE + 1000),
  PRICE * (28 + H % 20) / 100,
  CASE WHEN H % 50 < 3 THEN '2' WHEN H % 50 < 6 THEN '1' WHEN H % 50 = 6 THEN '3' ELSE '0' END,
  IF(H % 23 = 0, 0, 1),
  CASE H % 7 WHEN 0 THEN '' WHEN 1 THEN NULL WHEN 2 THEN 'C7X' ELSE 'C6X' END,
  IF(H % 11 = 0, NULL, H % 2), IF(H % 13 = 0, NULL, 0), IF(H % 13 = 0, NULL, 0),
  IF(H % 17 = 0, NULL, H % 3 = 0), IF(H % 19 = 0, NULL, 0),
  IF(H % 3 = 0, NULL, CONCAT('8800000', CODE)),
  CASE H % 6 WHEN 0 THEN NULL WHEN 1 THEN ' 5 ' WHEN 2 THEN '0' WHEN 3 THEN '3' ELSE '5' END
FROM (
  SELECT P.*, CRC32(CODE) H FROM (
    SELECT CONCAT(D.KD, LPAD(20 + D.NO * 8 + S.V, 3, '0')) CODE, CONCAT(D.NAME, S.NAME) NAME,
      (SELECT MIN(K.KD_ID) FROM KIND K WHERE LEFT(K.KD_ID, 3) = D.KD) KD_ID,
      ROUND(D.PRICE * S.RATE / 100 + S.EXTRA, -2) PRICE
    FROM CHAIN_DISH D JOIN CHAIN_SERVING S ON S.SERVE = D.SERVE
  ) P
) Q;

DROP TEMPORARY TABLE CHAIN_DISH, CHAIN_SERVING;

-- Some products were never put into a product group.
INSERT INTO PRGU (PR_CODE, PRGU_CODE)
SELECT PR_CODE, CONCAT('P', LEFT(PR_CODE, 3)) FROM PR
WHERE PR_CODE NOT IN ('101004', '301001', '303001') AND CRC32(PR_CODE) % 40 <> 0;

-- Stores' own prices: about six products in ten, 0 and Null among them. In store 1000 Null only
-- where there is no product group.
INSERT INTO CTP (RCT_CODE, CT_CODE, PR_CODE, CTP_UP, CTP_DATE)
SELECT RCT_CODE, '1000000000000000', PR_CODE,
  IF(PRGU_CODE IS NULL OR RCT_CODE <> '1000' AND H % 33 = 0, NULL,
    IF(PR_OP1 = 0 OR H % 20 = 0, 0, PR_OP1 + (H DIV 20) % 4 * 500)),
  '2024-02-01 06:00:00' + INTERVAL H % 900 DAY + INTERVAL H % 3600 SECOND
FROM (
  SELECT RCT.RCT_CODE, PR.PR_CODE, PR_OP1, PRGU_CODE, CRC32(CONCAT(RCT.RCT_CODE, PR.PR_CODE)) H
  FROM RCT JOIN PR LEFT JOIN PRGU ON PRGU.PR_CODE = PR.PR_CODE
  WHERE RCT.RCT_CODE < '1005'
) Q
WHERE H % 10 < 6 OR PR_CODE LIKE '113%' OR PRGU_CODE IS NULL;

-- What a trade partner asks for a bottle is kept in the same table.
INSERT INTO CTP (RCT_CODE, CT_CODE, PR_CODE, CTP_UP, CTP_DATE) VALUES
  ('1000', '2000000000000004', '201001', 1380, '2025-10-01 00:00:00'),
  ('1000', '2000000000000004', '201002', 1560, '2025-10-01 00:00:00');

INSERT INTO PRR (RCT_CODE, PR_CODE, PRR_END, PRR_DATE)
SELECT RCT_CODE, PR_CODE, ELT(H DIV 10 % 4 + 1, NULL, '0', '1', '1'),
  '2024-02-01 06:00:00' + INTERVAL H % 900 DAY
FROM (
  SELECT RCT.RCT_CODE, PR.PR_CODE, CRC32(CONCAT('R', RCT.RCT_CODE, PR.PR_CODE)) H
  FROM RCT JOIN PR WHERE RCT.RCT_CODE < '1005'
) Q
WHERE H % 10 = 0;

-- Staff of the other stores -----------------------------------------------------------------

INSERT INTO ST (ST_CODE, RCT_CODE, ST_NAME, ST_CARD, ST_NO, ST_BIRTH, ST_SECT, ST_PHONE, ST_HPHONE,
  ST_ZIP, ST_ADDR1, ST_ADDR2, ST_INDATE, ST_OTDATE, ST_DUTY, ST_POSID, ST_POSPWD, ST_POSLVL,
  ST_ATDTIME, ST_ATDPAY, ST_ASPLVL)
SELECT CONCAT(RCT_CODE, LPAD(SEAT, 3, '0')), RCT_CODE,
  CONCAT(ELT(H % 12 + 1, '감', '견', '국', '금', '길', '내', '단', '류', '맹', '모', '빈', '설'),
    ELT(H DIV 12 % 10 + 1, '가람', '나린', '다온', '라온', '마음', '바다', '새론', '아람', '초롱', '하람')),
  CONCAT('9', LPAD(RCT_CODE * 1000 + SEAT, 12, '0')), CONCAT('E-', RCT_CODE % 10, LPAD(SEAT, 2, '0')),
  CASE H % 9 WHEN 0 THEN NULL WHEN 1 THEN '0000-00-00' ELSE '1970-03-01' + INTERVAL H % 13000 DAY END,
  IF(H % 10 = 0, '1', '0'), '', CONCAT('010-0000-', LPAD(H % 10000, 4, '0')),
  IF(H % 3 = 0, NULL, LPAD(H % 100, 5, '0')), IF(H % 3 = 0, NULL, CONCAT('새싹로 ', H % 90 + 1)), NULL,
  '2018-01-02' + INTERVAL H % 3000 DAY,
  CASE H % 8 WHEN 0 THEN '2026-08-31' WHEN 1 THEN '0000-00-00' ELSE NULL END,
  ELT(SEAT % 4 + 1, '캐셔', '홀', '주방', '홀'),
  CASE H % 5 WHEN 0 THEN '' WHEN 1 THEN CONCAT('A', SEAT) ELSE LPAD(SEAT, 3, '0') END,
  LPAD(H % 10000, 4, '0'), ELT(SEAT % 4 + 1, '3', '1', NULL, '1'),
  IF(H % 2 = 0, '1100', '1700'), '10300', ELT(SEAT % 5 + 1, '3', '1', '0', '1', '1')
FROM (
  SELECT 1001 + N % 5 RCT_CODE, 2 + N DIV 5 SEAT, CRC32(CONCAT('S', N)) H
  FROM CHAIN_NUMBER WHERE N < 67
) Q;

-- Members -----------------------------------------------------------------------------------

INSERT INTO CT (CT_CODE, CT_GUBUN, CT_NAME, CT_JUMIN, CT_PHONE, CT_MAIL, CT_ZIP, CT_ADDR1, CT_ADDR2,
  CT_END, CT_POINT, CT_UPOINT, CT_VISITN, CT_VDATE, CT_MSG, CT_DATE, GP_CODE)
SELECT CODE, '1',
  CONCAT(ELT(H % 20 + 1, '감', '견', '국', '금', '길', '내', '단', '류', '맹', '모', '빈', '설', '심',
      '여', '염', '음', '제', '추', '탁', '황보'),
    ELT(H DIV 20 % 16 + 1, '가', '나', '다', '라', '미', '보', '새', '아', '예', '은', '이', '자', '지',
      '하', '한', '해'),
    ELT(H DIV 320 % 16 + 1, '람', '린', '온', '울', '솔', '별', '봄', '빛', '늘', '결', '슬', '든', '율',
      '담', '찬', '랑')),
  IF(H % 3 = 0, NULL, CONCAT(DATE_FORMAT(BIRTH, '%y%m%d'), '-0000000')),
  IF(H % 4 = 0, CONCAT('02-000-', LPAD(N, 4, '0')), IF(H % 4 = 1, '', NULL)),
  IF(H % 3 = 1, CONCAT('m', N, '@example.com'), NULL),
  IF(H % 5 = 0, NULL, LPAD(H % 80, 5, '0')),
  IF(H % 5 = 0, NULL, CONCAT(ELT(H % 6 + 1, '새벗시 물푸레구 한들로', '새벗시 나루구 갈대길',
    '솔내시 솔숲로', '다솜시 역앞길', '미리내군 별빛읍 장터길', '도담시 새싹로'), ' ', H DIV 8 % 200 + 1)),
  IF(H % 5 = 0, NULL, CONCAT(H % 15 + 1, '층 ', H % 12 + 1, '호')),
  CASE H % 31 WHEN 0 THEN '1' WHEN 1 THEN NULL ELSE '0' END,
  IF(H % 53 = 0, NULL, POINTS), IF(H % 47 = 0, NULL, POINTS DIV 3), VISITS,
  IF(VISITS = 0, NULL, CHANGED - INTERVAL H % 48 HOUR),
  CASE H % 20 WHEN 0 THEN '땅콩 알레르기; 주차 1대' WHEN 1 THEN '단골 -- 창가 자리'
    WHEN 2 THEN '50% 할인권 (1회)' WHEN 3 THEN '' ELSE NULL END,
  CHANGED, CASE H % 9 WHEN 0 THEN NULL WHEN 1 THEN 'G110' WHEN 2 THEN 'G120' ELSE 'G100' END
FROM (
  SELECT N, H, CONCAT(1000 + N % 5, '1', LPAD(N, 11, '0')) CODE,
    '1950-01-01' + INTERVAL H % 20000 DAY BIRTH, H DIV 100 % 300 * 50 POINTS,
    IF(H % 12 = 0, 0, H % 90) VISITS,
    '2020-01-01 11:00:00' + INTERVAL H % 2300 DAY + INTERVAL H % 36000 SECOND CHANGED
  FROM (SELECT N, CRC32(CONCAT('M', N)) H FROM CHAIN_NUMBER WHERE N < 2994) R
) Q;

-- A few hundred never filled in more than their name; some have no member record at all.
INSERT INTO CTMEM (CT_CODE, CT_LVL, CT_SEX, CT_BIRTH, CT_SECT, CT_MPHONE, CT_MAILCK, CT_DMZIP,
  CT_DMADDR1, CT_DMADDR2, CT_JOB, CT_DAY, CT_ABO, CT_HOBBY, CT_INCODE, CT_INNAME)
SELECT CONCAT(1000 + N % 5, '1', LPAD(N, 11, '0')),
  ELT(H % 10 + 1, '1', '1', '1', '1', '1', '2', '2', '3', '4', NULL),
  IF(H % 7 = 0, NULL, H % 2),
  IF(H % 8 = 0, NULL, DATE_FORMAT('1950-01-01' + INTERVAL H % 20000 DAY, '%Y-%m-%d')),
  IF(H % 8 = 0, NULL, H % 10 = 1), CONCAT('010-0000-', LPAD(N, 4, '0')), IF(H % 7 = 0, NULL, H % 3 = 1),
  IF(H % 6 = 0, LPAD(H % 80, 5, '0'), NULL), IF(H % 6 = 0, '새벗시 나루구 물빛로 1', NULL), NULL,
  ELT(H % 8 + 1, '회사원', '자영업', '학생', '주부', '공무원', '교사', NULL, ''),
  IF(H % 5 = 0, DATE_FORMAT('1980-05-01' + INTERVAL H % 14000 DAY, '%Y-%m-%d'), NULL),
  ELT(H DIV 3 % 6 + 1, 'A', 'B', 'O', 'AB', NULL, NULL),
  ELT(H DIV 5 % 6 + 1, '등산', '낚시', '독서', '여행', NULL, NULL),
  IF(H % 15 = 0, '1000900000000001', NULL), IF(H % 15 = 0, '고은별', NULL)
FROM (
  SELECT N, CRC32(CONCAT('M', N)) H FROM CHAIN_NUMBER WHERE N < 2994 AND N % 500 <> 499
) Q;

-- Trade partners ----------------------------------------------------------------------------

INSERT INTO CT (CT_CODE, CT_GUBUN, CT_NAME, CT_JUMIN, CT_PHONE, CT_MAIL, CT_ZIP, CT_ADDR1, CT_ADDR2,
  CT_END, CT_POINT, CT_UPOINT, CT_VISITN, CT_VDATE, CT_MSG, CT_DATE, GP_CODE)
SELECT CONCAT('2000', LPAD(101 + N, 12, '0')), '0',
  CONCAT(ELT(N % 7 + 1, '솔내', '나루', '다솜', '미리내', '도담', '새벗', '가온'), ' ',
    ELT(N % 11 + 1, '농산', '수산', '축산', '주류', '식품', '설비', '가스', '위생', '포장', '인쇄', '주방')),
  CONCAT('000-81-', LPAD(101 + N, 5, '0')), CONCAT('031-000-', LPAD(101 + N, 4, '0')),
  IF(H % 2 = 0, NULL, CONCAT('p', N, '@example.com')), NULL,
  IF(H % 3 = 0, NULL, CONCAT('솔내시 들판로 ', N + 2)), NULL,
  IF(H % 9 = 0, '1', '0'), 0, 0, H % 200, IF(H % 4 = 0, NULL, '2026-01-05 06:00:00' + INTERVAL H % 280 DAY),
  NULL, '2021-01-04 09:00:00' + INTERVAL H % 1900 DAY, ELT(H % 3 + 1, 'G010', 'G020', NULL)
FROM (SELECT N, CRC32(CONCAT('P', N)) H FROM CHAIN_NUMBER WHERE N < 53) Q;

INSERT INTO CTCOM (CT_CODE, CT_DANLV, CT_CEOPHONE, CT_ST, CT_KD)
SELECT CT_CODE, ELT(H % 4 + 1, '1', '2', '3', NULL), IF(H % 2 = 0, NULL, '010-0000-5000'),
  ELT(H % 3 + 1, '도매', '제조', NULL), ELT(H % 3 + 1, '식품', '기타', NULL)
FROM (SELECT CT_CODE, CRC32(CT_CODE) H FROM CT WHERE CT_CODE LIKE '20000000000001%') Q;

DROP TEMPORARY TABLE CHAIN_NUMBER;
