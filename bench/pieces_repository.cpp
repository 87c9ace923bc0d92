// SPDX-License-Identifier: Apache-2.0

// The repository, and JSON from it.

#include <benchmark/benchmark.h>
#include <fcntl.h>

#include "framework/add_to_vector_callback.h"
#include "host/base/namespace_name.h"
#include "host/formats/instance_writer.h"
#include "plugin/array_value.h"
#include "plugin/property_map.h"
#include "runtime/file_descriptor.h"
#include "runtime/repository.h"
#include "tests/fakes/pci_schema.h"

namespace {

using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::TCIMValue;

constexpr const char* kClass = "QZMSG_PCIDevice";

std::shared_ptr<vtq::Namespace> MakeRepository() {
  auto repository = vtq::Namespace::Create(pciinfo::kNamespaceName);
  for (vtq::ClassSchema& schema : pciinfo::PciSchema()) repository->Declare(std::move(schema));
  return repository;
}

TPropertyMap PropertiesOf(int number) {
  const std::string location = "PCI Bus 59, device  31, function " + std::to_string(number);
  return {{"CreationClassName", TCIMValue(kClass)},
          {"SystemCreationClassName", TCIMValue("CIM_ComputerSystem")},
          {"SystemName", TCIMValue("server.example.org")},
          {"DeviceID", TCIMValue(location)},
          {"Location", TCIMValue(location)},
          {"Description", TCIMValue("Ethernet controller: Ethernet Controller X710 (rev 02)")},
          {"VendorID", TCIMValue(std::uint16_t{0x8086})},
          {"PciDeviceID", TCIMValue(std::uint16_t{0x1572})},
          {"ClassCode", TCIMValue(std::uint8_t{2})},
          {"MEMAddress", MakeArrayValue(TCIMValue::TCIMType::kUint32,
                                        std::vector<std::uint32_t>{0xa0000000, 0xa1000000})}};
}

void Fill(vtq::Class& cimClass, std::int64_t instances) {
  for (int i = 0; i < instances; ++i) {
    const auto instance = cimClass.CreateInstance({});
    for (const auto& [name, value] : PropertiesOf(i)) instance->SetProperty(name, value, {});
    instance->Commit({});
  }
}

void Commit(benchmark::State& state) {
  for (auto _ : state) Fill(*MakeRepository()->Find(kClass), state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Commit)->Arg(64)->Arg(4096)->Unit(benchmark::kMicrosecond);

void Lookup(benchmark::State& state) {
  const auto repository = MakeRepository();
  const auto cimClass = repository->Find(kClass);
  Fill(*cimClass, state.range(0));
  const std::string path = cimClass->GetInstances().back()->GetPath();
  for (auto _ : state) benchmark::DoNotOptimize(cimClass->Find(path));
}
BENCHMARK(Lookup)->Arg(64)->Arg(4096);

void Enumerate(benchmark::State& state) {
  const auto repository = MakeRepository();
  const auto cimClass = repository->Find(kClass);
  Fill(*cimClass, state.range(0));
  for (auto _ : state) {
    std::vector<std::shared_ptr<ICIMInstance>> instances;
    cimClass->EnumerateInstances(NQZMVTQ20::TAddToVectorCallback<ICIMInstance>(instances), 0, {});
    benchmark::DoNotOptimize(instances.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Enumerate)->Arg(64)->Arg(4096);

void WriteJson(benchmark::State& state) {
  const auto repository = MakeRepository();
  Fill(*repository->Find(kClass), state.range(0));
  const vtq::FileDescriptor nothing(open("/dev/null", O_WRONLY | O_CLOEXEC));
  pciinfo::Output output(nothing.Get());
  for (auto _ : state) {
    pciinfo::WriteInstances(*repository, {kClass}, *pciinfo::MakeInstanceWriter("json", output));
    output.Flush();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(WriteJson)->Arg(64)->Arg(4096)->Unit(benchmark::kMicrosecond);

}  // namespace
