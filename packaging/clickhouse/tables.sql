-- SPDX-License-Identifier: Apache-2.0
--
-- The tables of a fleet on each server of the cluster "fleet":
--   clickhouse-client --multiquery <tables.sql
--
-- Names that end in _shard are what this server holds. The others are the same for the whole fleet:
-- rows are loaded into machine, function, slot and finding, and all the others can be asked. The
-- machine_key decides on the server, so that all that is known of a machine is on one, and no server
-- asks another one to answer. Every collection is kept. A row that is loaded again replaces itself.

CREATE DATABASE IF NOT EXISTS fleet;

CREATE TABLE IF NOT EXISTS fleet.machine_shard (
  machine_key String, machine String, collected DateTime,
  system_uuid String, machine_id String, maker String, product String,
  board_maker String, board_product String, board_version String,
  bios_maker String, bios_version String, bios_date String,
  complete UInt8, troubles String, version String,
  digest String                             -- of all rows of the collection
) ENGINE = ReplacingMergeTree PARTITION BY toYYYYMM(collected)
ORDER BY (machine_key, collected);

CREATE TABLE IF NOT EXISTS fleet.function_shard (
  machine_key String, machine String, collected DateTime, address String,
  vendor_id String, device_id String, subsystem_vendor_id String, subsystem_id String,
  class_code String, vendor String, device String, subsystem String, class_name String,
  revision Nullable(UInt8), driver String, firmware String, serial_number String,
  part_number String, product_name String, place String, slot String, certainty String,
  evidence String, link_width Nullable(UInt8), max_link_width Nullable(UInt8), link_speed String,
  max_link_speed String, numa_node Nullable(Int32), port_type String, parent_port String,
  physical_function String, is_bridge UInt8, is_card UInt8,
  device Nested (kind String, name String, hardware_address String, model String,
    serial_number String, firmware String)
) ENGINE = ReplacingMergeTree PARTITION BY toYYYYMM(collected)
ORDER BY (machine_key, collected, address)
SETTINGS index_granularity = 1024;

CREATE TABLE IF NOT EXISTS fleet.slot_shard (
  machine_key String, machine String, collected DateTime, slot String, designation String,
  state String, type String, width String, lanes Nullable(UInt8), length String, usage String,
  source String, firmware_number Nullable(UInt32), firmware_address String,
  physical_number Nullable(UInt32), ports String, link_width Nullable(UInt8),
  max_link_width Nullable(UInt8), link_speed String, max_link_speed String,
  numa_node Nullable(Int32), shared_with String, conflicts String
) ENGINE = ReplacingMergeTree PARTITION BY toYYYYMM(collected)
ORDER BY (machine_key, collected, slot)
SETTINGS index_granularity = 1024;

CREATE TABLE IF NOT EXISTS fleet.finding_shard (
  machine_key String, machine String, collected DateTime, number UInt32,
  code String, severity String, object String, text String
) ENGINE = ReplacingMergeTree PARTITION BY toYYYYMM(collected)
ORDER BY (machine_key, collected, number);

CREATE TABLE IF NOT EXISTS fleet.machine AS fleet.machine_shard
ENGINE = Distributed(fleet, fleet, machine_shard, cityHash64(machine_key));
CREATE TABLE IF NOT EXISTS fleet.function AS fleet.function_shard
ENGINE = Distributed(fleet, fleet, function_shard, cityHash64(machine_key));
CREATE TABLE IF NOT EXISTS fleet.slot AS fleet.slot_shard
ENGINE = Distributed(fleet, fleet, slot_shard, cityHash64(machine_key));
CREATE TABLE IF NOT EXISTS fleet.finding AS fleet.finding_shard
ENGINE = Distributed(fleet, fleet, finding_shard, cityHash64(machine_key));

-- What holds now is what the latest collections tell. A question names this view: each server asks its
-- own.
CREATE VIEW IF NOT EXISTS fleet.latest_shard AS
SELECT machine_key, max(collected) AS collected FROM fleet.machine_shard GROUP BY machine_key;

CREATE VIEW IF NOT EXISTS fleet.machines_shard AS
SELECT machine_key, machine, maker, product, board_maker, board_product, board_version, bios_maker,
  bios_version, bios_date, system_uuid, machine_id, free_slots, problems, complete, troubles,
  version, first_seen, last_seen
FROM (
  SELECT machine_key, argMax(machine, collected) AS machine, argMax(maker, collected) AS maker,
    argMax(product, collected) AS product, argMax(board_maker, collected) AS board_maker,
    argMax(board_product, collected) AS board_product,
    argMax(board_version, collected) AS board_version, argMax(bios_maker, collected) AS bios_maker,
    argMax(bios_version, collected) AS bios_version, argMax(bios_date, collected) AS bios_date,
    argMax(system_uuid, collected) AS system_uuid, argMax(machine_id, collected) AS machine_id,
    argMax(complete, collected) AS complete, argMax(troubles, collected) AS troubles,
    argMax(version, collected) AS version, min(collected) AS first_seen, max(collected) AS last_seen
  FROM fleet.machine_shard GROUP BY machine_key)
ANY LEFT JOIN (
  SELECT machine_key, sum(is_free) AS free_slots, sum(is_problem) AS problems
  FROM (
    SELECT machine_key, 1 AS is_free, 0 AS is_problem FROM fleet.slot_shard
    WHERE state = 'empty'
      AND (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.latest_shard)
    LIMIT 1 BY machine_key, slot
    UNION ALL
    SELECT machine_key, 0 AS is_free, 1 AS is_problem FROM fleet.finding_shard
    WHERE severity != 'note'
      AND (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.latest_shard)
    LIMIT 1 BY machine_key, number)
  GROUP BY machine_key)
USING machine_key;

-- The collections that differ from the one before, and that one: each tells what held before or
-- after the moment.
CREATE VIEW IF NOT EXISTS fleet.moments_shard AS
SELECT machine_key, moment.1 AS collected, at, moment.2 AS is_after
FROM (
  SELECT machine_key, earlier, at
  FROM (
    SELECT machine_key, arraySort(groupArray(collected)) AS times,
      arraySort((x, time) -> time, groupArray(digest), groupArray(collected)) AS digests
    FROM (
      SELECT machine_key, collected, any(digest) AS digest FROM fleet.machine_shard
      GROUP BY machine_key, collected)
    GROUP BY machine_key)
  ARRAY JOIN arrayPopBack(times) AS earlier, arrayPopFront(times) AS at,
    arrayPopBack(digests) AS old, arrayPopFront(digests) AS new
  WHERE old != new)
ARRAY JOIN [(earlier, 0), (at, 1)] AS moment;

-- What can change: the parts of machines in these collections, each with its properties.
CREATE VIEW IF NOT EXISTS fleet.facts_shard AS
SELECT machine_key, machine, collected, 'machine' AS kind, '' AS object, '' AS part, '' AS name,
  '' AS text,
  [maker, product, board_maker, board_product, board_version, bios_maker, bios_version, bios_date]
    AS facts
FROM fleet.machine_shard
PREWHERE (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.moments_shard)
UNION ALL
SELECT machine_key, machine, collected, 'function' AS kind, address AS object, '' AS part,
  '' AS name, concat(vendor, ' ', device) AS text,
  [concat(vendor, ' ', device), ifNull(toString(revision), ''), driver, firmware, serial_number,
    part_number, product_name, place, slot, certainty, ifNull(toString(link_width), ''),
    ifNull(toString(max_link_width), ''), max_link_speed, ifNull(toString(numa_node), ''),
    parent_port] AS facts
FROM fleet.function_shard
PREWHERE (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.moments_shard)
UNION ALL
SELECT machine_key, machine, collected, device.kind AS kind, device.name AS object,
  address AS part, '' AS name, address AS text,
  [device.hardware_address, device.model, device.serial_number, device.firmware] AS facts
FROM fleet.function_shard ARRAY JOIN device
PREWHERE (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.moments_shard)
UNION ALL
SELECT machine_key, machine, collected, 'slot' AS kind, slot AS object, '' AS part, '' AS name,
  state AS text,
  [state, type, width, designation, usage, ports, ifNull(toString(max_link_width), ''),
    max_link_speed, shared_with] AS facts
FROM fleet.slot_shard
PREWHERE (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.moments_shard)
UNION ALL
SELECT machine_key, machine, collected, 'finding' AS kind, object, '' AS part,
  code AS name, text, emptyArrayString() AS facts
FROM fleet.finding_shard
PREWHERE (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.moments_shard);

-- What appeared, changed or is gone from one collection to the next, and each machine's first one.
CREATE VIEW IF NOT EXISTS fleet.changes_shard AS
SELECT at, machine_key, machine, kind, object,
  multiIf(NOT was, 'appeared', NOT is, 'gone', 'changed') AS change, property, before, after
FROM (
  SELECT machine_key, at, kind, object, name, any(machine) AS machine,
    countIf(NOT is_after) > 0 AS was, countIf(is_after) > 0 AS is,
    anyIf(text, NOT is_after) AS old_text, anyIf(text, is_after) AS new_text,
    anyIf(facts, NOT is_after) AS old_facts, anyIf(facts, is_after) AS new_facts,
    multiIf(
      kind = 'machine', ['maker', 'product', 'board_maker', 'board_product', 'board_version',
        'bios_maker', 'bios_version', 'bios_date'],
      kind = 'function', ['device', 'revision', 'driver', 'firmware', 'serial_number',
        'part_number', 'product_name', 'place', 'slot', 'certainty', 'link_width',
        'max_link_width', 'max_link_speed', 'numa_node', 'parent_port'],
      kind = 'slot', ['state', 'type', 'width', 'designation', 'usage', 'ports', 'max_link_width',
        'max_link_speed', 'shared_with'],
      ['hardware_address', 'model', 'serial_number', 'firmware']) AS properties
  FROM (
    SELECT machine_key, machine, kind, object, part, name, text, facts, at, is_after
    FROM fleet.facts_shard ALL INNER JOIN fleet.moments_shard USING machine_key, collected)
  GROUP BY machine_key, at, kind, object, part, name
  HAVING NOT was OR NOT is OR old_facts != new_facts)
ARRAY JOIN if(was AND is, properties, [name]) AS property,
  if(was AND is, old_facts, [old_text]) AS before, if(was AND is, new_facts, [new_text]) AS after
WHERE NOT was OR NOT is OR before != after
UNION ALL
SELECT at, machine_key, name AS machine, 'machine' AS kind, name AS object, 'appeared' AS change,
  '' AS property, '' AS before, '' AS after
FROM (
  SELECT machine_key, min(collected) AS at, argMax(machine, collected) AS name
  FROM fleet.machine_shard GROUP BY machine_key);

-- The same for the whole fleet.
CREATE TABLE IF NOT EXISTS fleet.machines AS fleet.machines_shard
ENGINE = Distributed(fleet, fleet, machines_shard);
CREATE TABLE IF NOT EXISTS fleet.changes AS fleet.changes_shard
ENGINE = Distributed(fleet, fleet, changes_shard);
