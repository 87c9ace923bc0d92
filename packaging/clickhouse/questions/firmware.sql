-- SPDX-License-Identifier: Apache-2.0
-- pciinfo fleet DATABASE firmware
SELECT kind, concat(vendor, ' ', product) AS name, vendor_id, device_id, subsystem_vendor_id,
  subsystem_id, vendor, product, firmware, count, machines
FROM (
  SELECT 'bios' AS kind, maker AS vendor, product, '' AS vendor_id, '' AS device_id,
    '' AS subsystem_vendor_id, '' AS subsystem_id, '' AS class_code, bios_version AS firmware,
    count() AS count, count() AS machines
  FROM fleet.machines WHERE bios_version != ''
  GROUP BY maker, product, bios_version
  UNION ALL
  SELECT 'card' AS kind, any(vendor), any(device), vendor_id, device_id, subsystem_vendor_id,
    subsystem_id, class_code, firmware, count() AS count, uniqExact(machine_key) AS machines
  FROM (
    SELECT machine_key, vendor, device, vendor_id, device_id, subsystem_vendor_id, subsystem_id,
      class_code, firmware
    FROM fleet.function
    WHERE firmware != ''
      AND (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.latest_shard)
    LIMIT 1 BY machine_key, address)
  GROUP BY vendor_id, device_id, subsystem_vendor_id, subsystem_id, class_code, firmware)
ORDER BY kind, vendor, product, vendor_id, device_id, subsystem_vendor_id, subsystem_id, firmware
