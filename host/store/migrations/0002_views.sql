-- SPDX-License-Identifier: Apache-2.0
--
-- Views for people and their tools. They show what holds now; those that end in _history show what
-- has held as well. "machine" is the name; "machine_number" tells machines of the same name apart.

CREATE VIEW machines AS
SELECT m.name AS machine, m.id AS machine_number, m.system_uuid, m.machine_id,
  i.maker, i.product, i.board_maker, i.board_product, i.board_version,
  i.bios_maker, i.bios_version, i.bios_date,
  (SELECT COUNT(*) FROM slot_fact s
    WHERE s.machine = m.id AND s.gone IS NULL AND s.state = 'empty') AS free_slots,
  (SELECT COUNT(*) FROM finding_fact f
    WHERE f.machine = m.id AND f.gone IS NULL AND f.severity <> 'note') AS problems,
  m.complete, m.troubles, m.version, m.first_seen, m.last_seen
FROM machine m LEFT JOIN identity_fact i ON i.machine = m.id AND i.gone IS NULL;

CREATE VIEW function_history AS
SELECT m.name AS machine, m.id AS machine_number, f.address,
  c.vendor_id, c.device_id, c.subsystem_vendor_id, c.subsystem_id, c.class_code,
  c.vendor, c.device, c.subsystem, c.class_name,
  f.revision, f.driver, f.firmware, f.serial_number, f.part_number, f.product_name,
  f.place, f.slot, f.certainty, f.evidence,
  f.link_width, f.max_link_width, f.link_speed, f.max_link_speed, f.numa_node,
  f.port_type, f.parent_port, f.physical_function, f.is_bridge, f.is_card,
  f.first_seen, COALESCE(f.last_seen, m.last_seen) AS last_seen, f.gone
FROM function_fact f JOIN machine m ON m.id = f.machine JOIN card_model c ON c.id = f.model;

CREATE VIEW functions AS
SELECT machine, machine_number, address,
  vendor_id, device_id, subsystem_vendor_id, subsystem_id, class_code,
  vendor, device, subsystem, class_name,
  revision, driver, firmware, serial_number, part_number, product_name,
  place, slot, certainty, evidence,
  link_width, max_link_width, link_speed, max_link_speed, numa_node,
  port_type, parent_port, physical_function, is_bridge, is_card, first_seen, last_seen
FROM function_history WHERE gone IS NULL;

-- One row for each card: its first function that is neither a bridge nor virtual nor of the chip set.
CREATE VIEW cards AS
SELECT machine, machine_number, slot, place, address, vendor, device, subsystem, class_name,
  vendor_id, device_id, subsystem_vendor_id, subsystem_id, class_code,
  revision, driver, firmware, serial_number, part_number, product_name,
  link_width, max_link_width, link_speed, max_link_speed, numa_node, certainty, evidence,
  first_seen, last_seen
FROM function_history WHERE gone IS NULL AND is_card = 1;

CREATE VIEW system_devices AS
SELECT m.name AS machine, m.id AS machine_number, d.kind, d.name, d.address,
  f.slot, f.driver, c.vendor, c.device,
  d.hardware_address, d.model, d.serial_number, d.firmware,
  d.first_seen, m.last_seen
FROM system_device_fact d
JOIN machine m ON m.id = d.machine
LEFT JOIN function_fact f ON f.machine = d.machine AND f.address = d.address AND f.gone IS NULL
LEFT JOIN card_model c ON c.id = f.model
WHERE d.gone IS NULL;

CREATE VIEW interfaces AS
SELECT machine, machine_number, name AS interface, hardware_address, address, slot, driver,
  vendor, device, first_seen, last_seen
FROM system_devices WHERE kind = 'network';

CREATE VIEW slot_history AS
SELECT m.name AS machine, m.id AS machine_number, s.name AS slot, s.ordinal, s.designation,
  s.state, s.type, s.width, s.lanes, s.length, s.usage, s.source,
  s.firmware_number, s.firmware_address, s.physical_number, s.ports,
  s.max_link_width, s.max_link_speed, s.numa_node, s.shared_with, s.conflicts,
  s.first_seen, COALESCE(s.last_seen, m.last_seen) AS last_seen, s.gone
FROM slot_fact s JOIN machine m ON m.id = s.machine;

CREATE VIEW slots AS
SELECT machine, machine_number, slot, ordinal, designation, state, type, width, lanes, length,
  usage, source, firmware_number, firmware_address, physical_number, ports,
  max_link_width, max_link_speed, numa_node, shared_with, conflicts, first_seen, last_seen
FROM slot_history WHERE gone IS NULL;

CREATE VIEW free_slots AS
SELECT machine, machine_number, slot, type, width, lanes, length, max_link_width, max_link_speed,
  numa_node, ports, shared_with, conflicts, first_seen, last_seen
FROM slot_history WHERE gone IS NULL AND state = 'empty';

CREATE VIEW finding_history AS
SELECT m.name AS machine, m.id AS machine_number, f.code, f.severity, f.object, f.text,
  f.first_seen, COALESCE(f.last_seen, m.last_seen) AS last_seen, f.gone
FROM finding_fact f JOIN machine m ON m.id = f.machine;

CREATE VIEW findings AS
SELECT machine, machine_number, code, severity, object, text, first_seen, last_seen
FROM finding_history WHERE gone IS NULL;

-- Which versions of its firmware a card has in the fleet, and which BIOS a kind of machine.
CREATE VIEW firmware AS
SELECT 'card' AS kind, c.vendor, c.device AS product, c.vendor_id, c.device_id,
  c.subsystem_vendor_id, c.subsystem_id, g.firmware, g.machines, g.count
FROM (SELECT model, firmware, COUNT(DISTINCT machine) AS machines, COUNT(*) AS count
  FROM function_fact WHERE gone IS NULL AND firmware <> '' GROUP BY model, firmware) g
JOIN card_model c ON c.id = g.model
UNION ALL
SELECT 'bios', maker, product, '', '', '', '', bios_version, COUNT(*), COUNT(*)
FROM identity_fact WHERE gone IS NULL AND bios_version <> '' GROUP BY maker, product, bios_version;

-- What became known, changed or is gone after a machine was stored first; one row for each property
-- of what changed. Where many properties change, many rows have the same moment.
CREATE VIEW changes AS
WITH
function_text AS NOT MATERIALIZED (
  SELECT f.machine, f.address, f.first_seen, f.gone, f.revision, f.max_link_width, f.link_width,
    f.numa_node, f.max_link_speed, f.parent_port, f.driver, f.firmware, f.place, f.slot,
    f.certainty, f.serial_number, f.part_number, f.product_name, f.model,
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
  UNION ALL
  SELECT o.machine, o.gone, 'function', o.address, 'gone', '', o.device, ''
  FROM function_text o
  WHERE o.gone IS NOT NULL AND NOT EXISTS (SELECT 1 FROM function_fact n
    WHERE n.machine = o.machine AND n.address = o.address AND n.first_seen = o.gone)
  UNION ALL
  SELECT n.machine, n.first_seen, 'function', n.address, 'appeared', '', '', n.device
  FROM function_text n JOIN machine m ON m.id = n.machine AND m.first_seen < n.first_seen
  WHERE NOT EXISTS (SELECT 1 FROM function_fact o
    WHERE o.machine = m.id AND o.address = n.address AND (o.gone = n.first_seen) IS TRUE)
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
  UNION ALL
  SELECT o.machine, o.gone, o.kind, o.name, 'gone', '', o.address, ''
  FROM system_device_fact o
  WHERE o.gone IS NOT NULL AND NOT EXISTS (SELECT 1 FROM system_device_fact n
    WHERE n.machine = o.machine AND n.address = o.address AND n.kind = o.kind AND n.name = o.name
      AND n.first_seen = o.gone)
  UNION ALL
  SELECT n.machine, n.first_seen, n.kind, n.name, 'appeared', '', '', n.address
  FROM system_device_fact n JOIN machine m ON m.id = n.machine AND m.first_seen < n.first_seen
  WHERE NOT EXISTS (SELECT 1 FROM system_device_fact o
    WHERE o.machine = m.id AND o.address = n.address AND o.kind = n.kind AND o.name = n.name
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
  UNION ALL
  SELECT o.machine, o.gone, 'slot', o.name, 'gone', '', o.state, ''
  FROM slot_fact o
  WHERE o.gone IS NOT NULL AND NOT EXISTS (SELECT 1 FROM slot_fact n
    WHERE n.machine = o.machine AND n.name = o.name AND n.ordinal = o.ordinal
      AND n.first_seen = o.gone)
  UNION ALL
  SELECT n.machine, n.first_seen, 'slot', n.name, 'appeared', '', '', n.state
  FROM slot_fact n JOIN machine m ON m.id = n.machine AND m.first_seen < n.first_seen
  WHERE NOT EXISTS (SELECT 1 FROM slot_fact o
    WHERE o.machine = m.id AND o.name = n.name AND o.ordinal = n.ordinal
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
  UNION ALL
  SELECT o.machine, o.gone, 'finding', o.object, 'gone', o.code, o.text, ''
  FROM finding_fact o
  WHERE o.gone IS NOT NULL AND NOT EXISTS (SELECT 1 FROM finding_fact n
    WHERE n.machine = o.machine AND n.code = o.code AND n.object = o.object
      AND n.ordinal = o.ordinal AND n.first_seen = o.gone)
  UNION ALL
  SELECT n.machine, n.first_seen, 'finding', n.object, 'appeared', n.code, '', n.text
  FROM finding_fact n JOIN machine m ON m.id = n.machine AND m.first_seen < n.first_seen
  WHERE NOT EXISTS (SELECT 1 FROM finding_fact o
    WHERE o.machine = m.id AND o.code = n.code AND o.object = n.object
      AND o.ordinal = n.ordinal AND o.gone = n.first_seen))
SELECT m.name AS machine, m.id AS machine_number, c.at, c.kind, c.object, c.change, c.property,
  COALESCE(c.before, '') AS before, COALESCE(c.after, '') AS after
FROM change c JOIN machine m ON m.id = c.machine
WHERE c.change <> 'changed' OR COALESCE(c.before, '') <> COALESCE(c.after, '');
