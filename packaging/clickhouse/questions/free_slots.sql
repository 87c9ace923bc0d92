-- SPDX-License-Identifier: Apache-2.0
-- pciinfo fleet DATABASE slots --free --width x16
SELECT machine, slot, state, type, width, lanes, length, max_link_width, max_link_speed, numa_node,
  shared_with, conflicts, collected AS last_seen
FROM fleet.slot
WHERE state = 'empty' AND lanes >= 16
  AND (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.latest_shard)
ORDER BY machine, machine_key, slot
LIMIT 1 BY machine_key, slot
