-- SPDX-License-Identifier: Apache-2.0
-- pciinfo fleet DATABASE machines
SELECT machine, maker, product, board_maker, board_product, board_version, bios_maker, bios_version,
  bios_date, system_uuid, machine_id, free_slots, problems, complete, troubles, version, first_seen,
  last_seen
FROM fleet.machines
ORDER BY machine, machine_key
