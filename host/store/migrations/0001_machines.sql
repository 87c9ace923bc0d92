-- SPDX-License-Identifier: Apache-2.0
--
-- Machines, and what was known of them at which time. SQLite runs this text as it is; for PostgreSQL
-- the words INTEGER PRIMARY KEY become a BIGINT identity. A statement ends with ";" at the end of a
-- line. A text that is not known is empty; a number that is not known is NULL.
--
-- Tables that end in _fact keep history. A row holds from first_seen, the collection that told it
-- first, until gone, the first collection that told otherwise. Both gone and last_seen, the last
-- collection that still told it, are NULL while the row holds: that it was seen again changes only
-- machine.last_seen. Columns that are said to be "latest" are overwritten and make no history.

CREATE TABLE machine (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  system_uuid TEXT NOT NULL DEFAULT '',     -- a digest "sha256:..." with --redact
  machine_id TEXT NOT NULL DEFAULT '',      -- of the operating system; a digest with --redact
  first_seen TIMESTAMP WITH TIME ZONE NOT NULL,
  last_seen TIMESTAMP WITH TIME ZONE NOT NULL,
  complete INTEGER NOT NULL,                -- latest: 0 if something could not be collected
  troubles TEXT NOT NULL DEFAULT '',        -- latest: what could not, and why; one a line
  version TEXT NOT NULL DEFAULT ''          -- latest: of the program that collected
);
CREATE INDEX machine_by_name ON machine (name);
CREATE INDEX machine_by_uuid ON machine (system_uuid);
CREATE INDEX machine_by_machine_id ON machine (machine_id);

-- Values of this database itself: "salt" goes into each digest.
CREATE TABLE setting (
  name TEXT PRIMARY KEY,
  value TEXT NOT NULL
);

-- Each kind of function once for the whole fleet. IDs are hexadecimal digits, as lspci prints them.
-- The first name that is told is kept: files of IDs differ from machine to machine.
CREATE TABLE card_model (
  id INTEGER PRIMARY KEY,
  vendor_id TEXT NOT NULL,
  device_id TEXT NOT NULL,
  subsystem_vendor_id TEXT NOT NULL,
  subsystem_id TEXT NOT NULL,
  class_code TEXT NOT NULL,                 -- base class and subclass: "0200"
  vendor TEXT NOT NULL,
  device TEXT NOT NULL,
  subsystem TEXT NOT NULL,
  class_name TEXT NOT NULL,
  UNIQUE (vendor_id, device_id, subsystem_vendor_id, subsystem_id, class_code)
);

CREATE TABLE identity_fact (
  machine BIGINT NOT NULL REFERENCES machine (id) ON DELETE CASCADE,
  first_seen TIMESTAMP WITH TIME ZONE NOT NULL,
  last_seen TIMESTAMP WITH TIME ZONE,
  gone TIMESTAMP WITH TIME ZONE,
  maker TEXT NOT NULL,
  product TEXT NOT NULL,
  board_maker TEXT NOT NULL,
  board_product TEXT NOT NULL,
  board_version TEXT NOT NULL,
  bios_maker TEXT NOT NULL,
  bios_version TEXT NOT NULL,
  bios_date TEXT NOT NULL,
  PRIMARY KEY (machine, first_seen)
);
CREATE INDEX identity_fact_by_gone ON identity_fact (gone);

CREATE TABLE function_fact (
  machine BIGINT NOT NULL REFERENCES machine (id) ON DELETE CASCADE,
  address TEXT NOT NULL,
  first_seen TIMESTAMP WITH TIME ZONE NOT NULL,
  last_seen TIMESTAMP WITH TIME ZONE,
  gone TIMESTAMP WITH TIME ZONE,
  model BIGINT NOT NULL REFERENCES card_model (id),
  is_bridge INTEGER NOT NULL,               -- 1 or 0, as is the next
  is_card INTEGER NOT NULL,                 -- stands for its card: see the view cards
  revision INTEGER,
  max_link_width INTEGER,
  link_width INTEGER,
  numa_node INTEGER,
  max_link_speed TEXT NOT NULL,             -- "16.0 GT/s"
  link_speed TEXT NOT NULL,                 -- latest: it follows the load
  port_type TEXT NOT NULL,
  parent_port TEXT NOT NULL,                -- an address, as is the next
  physical_function TEXT NOT NULL,          -- of a virtual function
  driver TEXT NOT NULL,
  firmware TEXT NOT NULL,
  place TEXT NOT NULL,                      -- "slot", "on board", "unknown", ...
  slot TEXT NOT NULL,                       -- name of the slot that it sits in
  certainty TEXT NOT NULL,
  evidence TEXT NOT NULL,
  serial_number TEXT NOT NULL,              -- empty with --redact
  part_number TEXT NOT NULL,
  product_name TEXT NOT NULL,
  PRIMARY KEY (machine, address, first_seen)
);
CREATE INDEX function_fact_by_gone ON function_fact (gone) WHERE gone IS NOT NULL;
CREATE INDEX function_fact_by_first_seen ON function_fact (first_seen, machine);
CREATE INDEX function_fact_card
  ON function_fact (machine, address, model, slot, driver, firmware, serial_number)
  WHERE gone IS NULL AND is_card = 1;
CREATE INDEX function_fact_by_model ON function_fact (model, is_card, machine) WHERE gone IS NULL;
CREATE INDEX function_fact_by_serial_number ON function_fact (serial_number)
  WHERE gone IS NULL AND serial_number <> '';
CREATE INDEX function_fact_by_firmware ON function_fact (firmware, model, machine)
  WHERE gone IS NULL AND firmware <> '';
CREATE INDEX function_fact_narrow ON function_fact (machine)
  WHERE gone IS NULL AND link_width < max_link_width;

-- What the system knows functions as: a network interface, a disk.
CREATE TABLE system_device_fact (
  machine BIGINT NOT NULL REFERENCES machine (id) ON DELETE CASCADE,
  address TEXT NOT NULL,                    -- of the function
  kind TEXT NOT NULL,                       -- "network", "block", "nvme", "drm", "infiniband", "scsi"
  name TEXT NOT NULL,                       -- "eth0"
  first_seen TIMESTAMP WITH TIME ZONE NOT NULL,
  last_seen TIMESTAMP WITH TIME ZONE,
  gone TIMESTAMP WITH TIME ZONE,
  hardware_address TEXT NOT NULL,           -- of a network interface; empty with --redact
  model TEXT NOT NULL,                      -- of an NVMe device
  serial_number TEXT NOT NULL,              -- of an NVMe device; empty with --redact
  firmware TEXT NOT NULL,                   -- of an NVMe or InfiniBand device
  PRIMARY KEY (machine, address, kind, name, first_seen)
);
CREATE INDEX system_device_fact_by_gone ON system_device_fact (gone) WHERE gone IS NOT NULL;
CREATE INDEX system_device_fact_by_first_seen ON system_device_fact (first_seen);
CREATE INDEX system_device_fact_by_name ON system_device_fact (name) WHERE gone IS NULL;
CREATE INDEX system_device_fact_by_model ON system_device_fact (model, machine, address)
  WHERE gone IS NULL AND model <> '';
CREATE INDEX system_device_fact_by_hardware_address ON system_device_fact (hardware_address)
  WHERE gone IS NULL AND hardware_address <> '';
CREATE INDEX system_device_fact_by_serial_number ON system_device_fact (serial_number)
  WHERE gone IS NULL AND serial_number <> '';

CREATE TABLE slot_fact (
  machine BIGINT NOT NULL REFERENCES machine (id) ON DELETE CASCADE,
  name TEXT NOT NULL,
  ordinal INTEGER NOT NULL,                 -- 1 for the second slot of this name, and so on
  first_seen TIMESTAMP WITH TIME ZONE NOT NULL,
  last_seen TIMESTAMP WITH TIME ZONE,
  gone TIMESTAMP WITH TIME ZONE,
  designation TEXT NOT NULL,
  source TEXT NOT NULL,
  state TEXT NOT NULL,                      -- "occupied", "empty" or "unknown"
  type TEXT NOT NULL,
  width TEXT NOT NULL,                      -- "x16"
  lanes INTEGER,                            -- 16
  length TEXT NOT NULL,
  usage TEXT NOT NULL,                      -- as the firmware says
  firmware_number INTEGER,
  firmware_address TEXT NOT NULL,
  ports TEXT NOT NULL,                      -- addresses, with ", " between them
  physical_number INTEGER,
  max_link_width INTEGER,
  max_link_speed TEXT NOT NULL,
  numa_node INTEGER,
  shared_with TEXT NOT NULL,                -- names of the slots that share its port
  conflicts TEXT NOT NULL,                  -- one a line
  PRIMARY KEY (machine, name, ordinal, first_seen)
);
CREATE INDEX slot_fact_by_gone ON slot_fact (gone) WHERE gone IS NOT NULL;
CREATE INDEX slot_fact_by_first_seen ON slot_fact (first_seen);
CREATE INDEX slot_fact_free ON slot_fact (lanes, machine) WHERE gone IS NULL AND state = 'empty';

CREATE TABLE finding_fact (
  machine BIGINT NOT NULL REFERENCES machine (id) ON DELETE CASCADE,
  code TEXT NOT NULL,
  object TEXT NOT NULL,                     -- an address or the name of a slot
  ordinal INTEGER NOT NULL,                 -- 1 for the second finding of this code there, and so on
  first_seen TIMESTAMP WITH TIME ZONE NOT NULL,
  last_seen TIMESTAMP WITH TIME ZONE,
  gone TIMESTAMP WITH TIME ZONE,
  severity TEXT NOT NULL,
  text TEXT NOT NULL,                       -- latest: it can tell counts
  PRIMARY KEY (machine, code, object, ordinal, first_seen)
);
CREATE INDEX finding_fact_by_gone ON finding_fact (gone) WHERE gone IS NOT NULL;
CREATE INDEX finding_fact_by_first_seen ON finding_fact (first_seen);
CREATE INDEX finding_fact_by_code ON finding_fact (code) WHERE gone IS NULL;
