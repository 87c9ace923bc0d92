// SPDX-License-Identifier: Apache-2.0
#include "tests/topology/resolved_machine.h"

#include <cstdio>

namespace topology {

void AddCardBehindPort(MadeMachine& machine, const std::string& port, unsigned bus,
                       int physicalNumber) {
  machine.Port(port, bus, bus, physicalNumber);
  char card[32];
  std::snprintf(card, sizeof card, "0000:%02x:00.0", bus);
  machine.Card(card);
  card[11] = '1';
  machine.Card(card);
}

void AddBoardSwitch(MadeMachine& machine, int firstNumber, int secondNumber) {
  machine.Port("0000:64:00.0", 0x65, 0x68, 6);
  machine.Port("0000:65:00.0", 0x66, 0x68, -1, PortType::kUpstreamPort);
  machine.Port("0000:66:08.0", 0x67, 0x67, firstNumber, PortType::kDownstreamPort);
  machine.Port("0000:66:10.0", 0x68, 0x68, secondNumber, PortType::kDownstreamPort);
  machine.Card("0000:67:00.0", 0x0300);
  machine.Card("0000:68:00.0", 0x0300);
}

}  // namespace topology
