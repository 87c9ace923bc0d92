-- SPDX-License-Identifier: Apache-2.0
-- pciinfo fleet DATABASE find 10de:2231
SELECT machine, slot, address, concat(vendor, ' ', device) AS name, 'IDs' AS found_by,
  concat(vendor_id, ':', device_id) AS found, vendor_id, device_id, subsystem_vendor_id, subsystem_id,
  driver, firmware, serial_number, part_number, place, collected AS last_seen
FROM fleet.function
WHERE vendor_id = '10de' AND device_id = '2231'
  AND (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.latest_shard)
ORDER BY machine, machine_key, address
LIMIT 1 BY machine_key, address
