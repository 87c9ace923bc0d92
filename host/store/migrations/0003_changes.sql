-- SPDX-License-Identifier: Apache-2.0
--
-- Rows that began after their machine was stored first are marked, so that the changes of a fleet
-- are found without a look at each of its rows.

DROP VIEW IF EXISTS changes;

-- 1 if the machine was known before the row began, otherwise 0.
ALTER TABLE identity_fact ADD COLUMN began_later INTEGER NOT NULL DEFAULT 0;
UPDATE identity_fact SET began_later = 1
WHERE first_seen > (SELECT m.first_seen FROM machine m WHERE m.id = identity_fact.machine);

ALTER TABLE function_fact ADD COLUMN began_later INTEGER NOT NULL DEFAULT 0;
UPDATE function_fact SET began_later = 1
WHERE first_seen > (SELECT m.first_seen FROM machine m WHERE m.id = function_fact.machine);

ALTER TABLE system_device_fact ADD COLUMN began_later INTEGER NOT NULL DEFAULT 0;
UPDATE system_device_fact SET began_later = 1
WHERE first_seen > (SELECT m.first_seen FROM machine m WHERE m.id = system_device_fact.machine);

ALTER TABLE slot_fact ADD COLUMN began_later INTEGER NOT NULL DEFAULT 0;
UPDATE slot_fact SET began_later = 1
WHERE first_seen > (SELECT m.first_seen FROM machine m WHERE m.id = slot_fact.machine);

ALTER TABLE finding_fact ADD COLUMN began_later INTEGER NOT NULL DEFAULT 0;
UPDATE finding_fact SET began_later = 1
WHERE first_seen > (SELECT m.first_seen FROM machine m WHERE m.id = finding_fact.machine);

DROP INDEX function_fact_by_first_seen;
CREATE INDEX function_fact_by_first_seen ON function_fact (first_seen) WHERE began_later = 1;
DROP INDEX system_device_fact_by_first_seen;
CREATE INDEX system_device_fact_by_first_seen ON system_device_fact (first_seen)
  WHERE began_later = 1;
DROP INDEX slot_fact_by_first_seen;
CREATE INDEX slot_fact_by_first_seen ON slot_fact (first_seen) WHERE began_later = 1;
DROP INDEX finding_fact_by_first_seen;
CREATE INDEX finding_fact_by_first_seen ON finding_fact (first_seen) WHERE began_later = 1;

-- What became known, changed or is gone after a machine was stored first; one row for each property
-- of what changed. Where many properties change, many rows have the same moment.
CREATE VIEW changes AS
WITH
function_text AS NOT MATERIALIZED (
  SELECT f.machine, f.address, f.first_seen, f.gone, f.began_later, f.revision, f.max_link_width,
    f.link_width, f.numa_node, f.max_link_speed, f.parent_port, f.driver, f.firmware, f.place,
    f.slot, f.certainty, f.serial_number, f.part_number, f.product_name, f.model,
    c.vendor || ' ' || c.device AS device
  FROM function_fact f JOIN card_model c ON c.id = f.model),
function_property AS (
  SELECT 'device' AS name UNION ALL SELECT 'revision' UNION ALL SELECT 'driver'
  UNION ALL SELECT 'firmware' UNION ALL SELECT 'serial_number' UNION ALL SELECT 'part_number'
  UNION ALL SELECT 'product_name' UNION ALL SELECT 'place' UNION ALL SELECT 'slot'
  UNION ALL SELECT 'certainty' UNION ALL SELECT 'link_width' UNION ALL SELECT 'max_link_width'
  UNION ALL SELECT 'max_link_speed' UNION ALL SELECT 'numa_node' UNION ALL SELECT 'parent_port'),
slot_property AS (
  SELECT 'state' AS name UNION ALL SELECT 'type' UNION ALL SELECT 'width'
  UNION ALL SELECT 'designation' UNION ALL SELECT 'usage' UNION ALL SELECT 'ports'
  UNION ALL SELECT 'max_link_width' UNION ALL SELECT 'max_link_speed'
  UNION ALL SELECT 'shared_with'),
system_device_property AS (
  SELECT 'hardware_address' AS name UNION ALL SELECT 'model' UNION ALL SELECT 'serial_number'
  UNION ALL SELECT 'firmware'),
identity_property AS (
  SELECT 'maker' AS name UNION ALL SELECT 'product' UNION ALL SELECT 'board_maker'
  UNION ALL SELECT 'board_product' UNION ALL SELECT 'board_version' UNION ALL SELECT 'bios_maker'
  UNION ALL SELECT 'bios_version' UNION ALL SELECT 'bios_date'),
change (machine, at, kind, object, change, property, before, after) AS NOT MATERIALIZED (
  SELECT id, first_seen, 'machine', name, 'appeared', '', '', '' FROM machine
  UNION ALL
  SELECT o.machine, o.gone, 'machine', '', 'changed', p.name,
    CASE p.name WHEN 'maker' THEN o.maker WHEN 'product' THEN o.product
      WHEN 'board_maker' THEN o.board_maker WHEN 'board_product' THEN o.board_product
      WHEN 'board_version' THEN o.board_version WHEN 'bios_maker' THEN o.bios_maker
      WHEN 'bios_version' THEN o.bios_version WHEN 'bios_date' THEN o.bios_date END,
    CASE p.name WHEN 'maker' THEN n.maker WHEN 'product' THEN n.product
      WHEN 'board_maker' THEN n.board_maker WHEN 'board_product' THEN n.board_product
      WHEN 'board_version' THEN n.board_version WHEN 'bios_maker' THEN n.bios_maker
      WHEN 'bios_version' THEN n.bios_version WHEN 'bios_date' THEN n.bios_date END
  FROM identity_fact o JOIN identity_fact n ON n.machine = o.machine AND n.first_seen = o.gone
  CROSS JOIN identity_property p
  WHERE o.gone IS NOT NULL
  UNION ALL
  SELECT o.machine, o.gone, 'function', o.address, 'gone', '', o.device, ''
  FROM function_text o
  WHERE o.gone IS NOT NULL AND NOT EXISTS (SELECT 1 FROM function_fact n
    WHERE n.machine = o.machine AND n.address = o.address AND n.first_seen = o.gone)
  UNION ALL
  SELECT n.machine, n.first_seen, 'function', n.address, 'appeared', '', '', n.device
  FROM function_text n
  WHERE n.began_later = 1 AND NOT EXISTS (SELECT 1 FROM function_fact o
    WHERE o.machine = n.machine AND o.address = n.address AND (o.gone = n.first_seen) IS TRUE)
  UNION ALL
  SELECT o.machine, o.gone, 'function', o.address, 'changed', p.name,
    CASE p.name WHEN 'device' THEN o.device WHEN 'revision' THEN CAST(o.revision AS TEXT)
      WHEN 'driver' THEN o.driver WHEN 'firmware' THEN o.firmware
      WHEN 'serial_number' THEN o.serial_number WHEN 'part_number' THEN o.part_number
      WHEN 'product_name' THEN o.product_name WHEN 'place' THEN o.place WHEN 'slot' THEN o.slot
      WHEN 'certainty' THEN o.certainty WHEN 'link_width' THEN CAST(o.link_width AS TEXT)
      WHEN 'max_link_width' THEN CAST(o.max_link_width AS TEXT)
      WHEN 'max_link_speed' THEN o.max_link_speed WHEN 'numa_node' THEN CAST(o.numa_node AS TEXT)
      WHEN 'parent_port' THEN o.parent_port END,
    CASE p.name WHEN 'device' THEN n.device WHEN 'revision' THEN CAST(n.revision AS TEXT)
      WHEN 'driver' THEN n.driver WHEN 'firmware' THEN n.firmware
      WHEN 'serial_number' THEN n.serial_number WHEN 'part_number' THEN n.part_number
      WHEN 'product_name' THEN n.product_name WHEN 'place' THEN n.place WHEN 'slot' THEN n.slot
      WHEN 'certainty' THEN n.certainty WHEN 'link_width' THEN CAST(n.link_width AS TEXT)
      WHEN 'max_link_width' THEN CAST(n.max_link_width AS TEXT)
      WHEN 'max_link_speed' THEN n.max_link_speed WHEN 'numa_node' THEN CAST(n.numa_node AS TEXT)
      WHEN 'parent_port' THEN n.parent_port END
  FROM function_text o
  JOIN function_text n ON n.machine = o.machine AND n.address = o.address AND n.first_seen = o.gone
  CROSS JOIN function_property p
  WHERE o.gone IS NOT NULL
  UNION ALL
  SELECT o.machine, o.gone, o.kind, o.name, 'gone', '', o.address, ''
  FROM system_device_fact o
  WHERE o.gone IS NOT NULL AND NOT EXISTS (SELECT 1 FROM system_device_fact n
    WHERE n.machine = o.machine AND n.address = o.address AND n.kind = o.kind AND n.name = o.name
      AND n.first_seen = o.gone)
  UNION ALL
  SELECT n.machine, n.first_seen, n.kind, n.name, 'appeared', '', '', n.address
  FROM system_device_fact n
  WHERE n.began_later = 1 AND NOT EXISTS (SELECT 1 FROM system_device_fact o
    WHERE o.machine = n.machine AND o.address = n.address AND o.kind = n.kind AND o.name = n.name
      AND o.gone = n.first_seen)
  UNION ALL
  SELECT o.machine, o.gone, o.kind, o.name, 'changed', p.name,
    CASE p.name WHEN 'hardware_address' THEN o.hardware_address WHEN 'model' THEN o.model
      WHEN 'serial_number' THEN o.serial_number WHEN 'firmware' THEN o.firmware END,
    CASE p.name WHEN 'hardware_address' THEN n.hardware_address WHEN 'model' THEN n.model
      WHEN 'serial_number' THEN n.serial_number WHEN 'firmware' THEN n.firmware END
  FROM system_device_fact o
  JOIN system_device_fact n ON n.machine = o.machine AND n.address = o.address AND n.kind = o.kind
    AND n.name = o.name AND n.first_seen = o.gone
  CROSS JOIN system_device_property p
  WHERE o.gone IS NOT NULL
  UNION ALL
  SELECT o.machine, o.gone, 'slot', o.name, 'gone', '', o.state, ''
  FROM slot_fact o
  WHERE o.gone IS NOT NULL AND NOT EXISTS (SELECT 1 FROM slot_fact n
    WHERE n.machine = o.machine AND n.name = o.name AND n.ordinal = o.ordinal
      AND n.first_seen = o.gone)
  UNION ALL
  SELECT n.machine, n.first_seen, 'slot', n.name, 'appeared', '', '', n.state
  FROM slot_fact n
  WHERE n.began_later = 1 AND NOT EXISTS (SELECT 1 FROM slot_fact o
    WHERE o.machine = n.machine AND o.name = n.name AND o.ordinal = n.ordinal
      AND o.gone = n.first_seen)
  UNION ALL
  SELECT o.machine, o.gone, 'slot', o.name, 'changed', p.name,
    CASE p.name WHEN 'state' THEN o.state WHEN 'type' THEN o.type WHEN 'width' THEN o.width
      WHEN 'designation' THEN o.designation WHEN 'usage' THEN o.usage WHEN 'ports' THEN o.ports
      WHEN 'max_link_width' THEN CAST(o.max_link_width AS TEXT)
      WHEN 'max_link_speed' THEN o.max_link_speed WHEN 'shared_with' THEN o.shared_with END,
    CASE p.name WHEN 'state' THEN n.state WHEN 'type' THEN n.type WHEN 'width' THEN n.width
      WHEN 'designation' THEN n.designation WHEN 'usage' THEN n.usage WHEN 'ports' THEN n.ports
      WHEN 'max_link_width' THEN CAST(n.max_link_width AS TEXT)
      WHEN 'max_link_speed' THEN n.max_link_speed WHEN 'shared_with' THEN n.shared_with END
  FROM slot_fact o
  JOIN slot_fact n ON n.machine = o.machine AND n.name = o.name AND n.ordinal = o.ordinal
    AND n.first_seen = o.gone
  CROSS JOIN slot_property p
  WHERE o.gone IS NOT NULL
  UNION ALL
  SELECT o.machine, o.gone, 'finding', o.object, 'gone', o.code, o.text, ''
  FROM finding_fact o
  WHERE o.gone IS NOT NULL AND NOT EXISTS (SELECT 1 FROM finding_fact n
    WHERE n.machine = o.machine AND n.code = o.code AND n.object = o.object
      AND n.ordinal = o.ordinal AND n.first_seen = o.gone)
  UNION ALL
  SELECT n.machine, n.first_seen, 'finding', n.object, 'appeared', n.code, '', n.text
  FROM finding_fact n
  WHERE n.began_later = 1 AND NOT EXISTS (SELECT 1 FROM finding_fact o
    WHERE o.machine = n.machine AND o.code = n.code AND o.object = n.object
      AND o.ordinal = n.ordinal AND o.gone = n.first_seen))
SELECT m.name AS machine, m.id AS machine_number, c.at, c.kind, c.object, c.change, c.property,
  COALESCE(c.before, '') AS before, COALESCE(c.after, '') AS after
FROM change c JOIN machine m ON m.id = c.machine
WHERE c.change <> 'changed' OR COALESCE(c.before, '') <> COALESCE(c.after, '');
