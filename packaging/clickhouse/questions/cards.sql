-- SPDX-License-Identifier: Apache-2.0
-- pciinfo fleet DATABASE cards --filter class=0302
SELECT machine, slot, address, concat(vendor, ' ', device) AS name, vendor_id, device_id,
  subsystem_vendor_id, subsystem_id, vendor, device, subsystem, class_code, class_name, revision,
  driver, firmware, serial_number, part_number, product_name, link_width, max_link_width, link_speed,
  max_link_speed, numa_node, place, certainty, collected AS last_seen
FROM fleet.function
WHERE is_card AND class_code = '0302'
  AND (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.latest_shard)
ORDER BY machine, machine_key, address
LIMIT 1 BY machine_key, address
