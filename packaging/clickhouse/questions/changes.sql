-- SPDX-License-Identifier: Apache-2.0
-- pciinfo fleet DATABASE changes --since 2026-01-10
SELECT at, machine, kind, object, change, property, before, after
FROM fleet.changes
WHERE at >= toDateTime('2026-01-10 00:00:00')
ORDER BY at, machine, machine_key, kind, object, change, property
