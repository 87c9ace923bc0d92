-- SPDX-License-Identifier: Apache-2.0
-- pciinfo fleet DATABASE findings
SELECT machine, severity, code, object, text, collected AS last_seen
FROM fleet.finding
WHERE (machine_key, collected) IN (SELECT machine_key, collected FROM fleet.latest_shard)
ORDER BY machine, machine_key, severity, code, object
LIMIT 1 BY machine_key, number
