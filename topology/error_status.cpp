// SPDX-License-Identifier: Apache-2.0
#include "topology/error_status.h"

#include <linux/pci_regs.h>

#include <array>
#include <span>

namespace topology {
namespace {

struct ErrorBit {
  std::uint32_t bit;
  const char* name;
};

constexpr std::array<ErrorBit, 18> kUncorrectable = {{{PCI_ERR_UNC_UND, "Undefined"},
                                                      {PCI_ERR_UNC_DLP, "DLP"},
                                                      {PCI_ERR_UNC_SURPDN, "SDES"},
                                                      {PCI_ERR_UNC_POISON_TLP, "TLP"},
                                                      {PCI_ERR_UNC_FCP, "FCP"},
                                                      {PCI_ERR_UNC_COMP_TIME, "CmpltTO"},
                                                      {PCI_ERR_UNC_COMP_ABORT, "CmpltAbrt"},
                                                      {PCI_ERR_UNC_UNX_COMP, "UnxCmplt"},
                                                      {PCI_ERR_UNC_RX_OVER, "RxOF"},
                                                      {PCI_ERR_UNC_MALF_TLP, "MalfTLP"},
                                                      {PCI_ERR_UNC_ECRC, "ECRC"},
                                                      {PCI_ERR_UNC_UNSUP, "UnsupReq"},
                                                      {PCI_ERR_UNC_ACSV, "ACSViol"},
                                                      {PCI_ERR_UNC_INTN, "UncorrIntErr"},
                                                      {PCI_ERR_UNC_MCBTLP, "BlockedTLP"},
                                                      {PCI_ERR_UNC_ATOMEG, "AtomicOpBlocked"},
                                                      {PCI_ERR_UNC_TLPPRE, "TLPBlockedErr"},
                                                      // Not in older versions of pci_regs.h.
                                                      {1U << 26, "PoisonTLPBlocked"}}};

constexpr std::array<ErrorBit, 8> kCorrectable = {{{PCI_ERR_COR_RCVR, "RxErr"},
                                                   {PCI_ERR_COR_BAD_TLP, "BadTLP"},
                                                   {PCI_ERR_COR_BAD_DLLP, "BadDLLP"},
                                                   {PCI_ERR_COR_REP_ROLL, "Rollover"},
                                                   {PCI_ERR_COR_REP_TIMER, "Timeout"},
                                                   {PCI_ERR_COR_ADV_NFAT, "NonFatalErr"},
                                                   {PCI_ERR_COR_INTERNAL, "CorrIntErr"},
                                                   {PCI_ERR_COR_LOG_OVER, "HeaderOF"}}};

std::string NameOf(std::uint32_t bit, unsigned number, std::span<const ErrorBit> names) {
  for (const ErrorBit& known : names) {
    if (known.bit == bit) return known.name;
  }
  return "bit " + std::to_string(number);
}

std::vector<std::string> NamesOf(std::uint32_t bits, std::span<const ErrorBit> names) {
  std::vector<std::string> found;
  for (unsigned number = 0; number < 32; ++number) {
    const std::uint32_t bit = std::uint32_t{1} << number;
    if ((bits & bit) != 0) found.push_back(NameOf(bit, number, names));
  }
  return found;
}

}  // namespace

std::optional<ErrorStatus> DecodeErrorStatus(const ConfigSpace& config, std::size_t at) {
  const auto uncorrectable = config.Dword(at + PCI_ERR_UNCOR_STATUS);
  const auto correctable = config.Dword(at + PCI_ERR_COR_STATUS);
  if (!uncorrectable || !correctable) return std::nullopt;
  return ErrorStatus{*uncorrectable, *correctable};
}

std::vector<std::string> UncorrectableNames(std::uint32_t bits) {
  return NamesOf(bits, kUncorrectable);
}

std::vector<std::string> CorrectableNames(std::uint32_t bits) {
  return NamesOf(bits, kCorrectable);
}

}  // namespace topology
