-- SPDX-License-Identifier: Apache-2.0
-- pciinfo fleet DATABASE find gpu
SELECT machine, slot, address, concat(vendor, ' ', device) AS name,
  arraySort(arrayMap(way -> way.1, ways))[1] AS found_by,
  arraySort(arrayMap(way -> way.2, ways))[1] AS found, vendor_id, device_id, subsystem_vendor_id,
  subsystem_id, driver, firmware, serial_number, part_number, place, collected AS last_seen
FROM (
  WITH 'gpu' AS text
  SELECT machine_key, machine, slot, address, vendor, device, vendor_id, device_id,
    subsystem_vendor_id, subsystem_id, driver, firmware, serial_number, part_number, place, collected,
    concat(vendor, ' ', device, ' ', subsystem) AS names,
    arrayFilter(way -> way.2 != '', arrayConcat(
      [('name', if(is_card AND positionCaseInsensitive(names, text) > 0,
          concat(vendor, ' ', device), '')),
       ('serial number', if(serial_number = text, text, ''))],
      arrayMap(x -> ('serial number', if(x = text, text, '')), device.serial_number),
      arrayMap(x -> ('model', if(positionCaseInsensitive(x, text) > 0, x, '')), device.model),
      arrayMap(x -> ('hardware address', if(x = lower(text), x, '')), device.hardware_address),
      arrayMap((kind, x) -> (concat(kind, ' device'), if(x = text, text, '')), device.kind,
        device.name))) AS ways
  FROM fleet.function
  WHERE notEmpty(ways)
    AND (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.latest_shard))
ORDER BY machine, machine_key, address
LIMIT 1 BY machine_key, address
