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
