// The settings document and the lists against what the libraries below them need for the same data.

#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

#include <QApplication>
#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include "Model/KeyModels.h"
#include "VantroStandaloneSetting/SettingFile.h"
#include "appkit/NSArrayController.h"
#include "foundation/FileDescriptor.h"
#include "support/TemporaryPrefix.h"

namespace {

using namespace vantro;

constexpr std::uint64_t keyCount = 100'000;

VantroStandaloneSetting largeSetting()
{
    VantroStandaloneSetting setting;
    for (std::uint64_t key = 1; key <= keyCount; ++key) {
        if (key % 10 == 1)
            setting.users.emplace_back("account" + std::to_string(key));
        setting.users.back().keys.emplace_back(key);
    }
    return setting;
}

void documentLoadAndSave(benchmark::State& state)
{
    SettingFile file;
    file.write(largeSetting());
    for (auto _ : state)
        file.write(file.read().value());
}

void documentLoadAndSaveFloor(benchmark::State& state)
{
    SettingFile file;
    file.write(largeSetting());
    const std::string path = file.url().string();
    for (auto _ : state) {
        pugi::xml_document document;
        document.load_file(path.c_str());
        document.save_file(path.c_str(), "  ");
        const FileDescriptor written(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        ::fsync(written.get());
    }
}

std::vector<NSArrayController<MasterKeyModel>::Column> serialColumn()
{
    return {{QStringLiteral("Serial"), [](const MasterKeyModel& row) { return QString::fromStdString(row.serial()); }}};
}

/// Times `fill` together with what the table then reads for its first screen.
template <class Fill>
void measureList(benchmark::State& state, Fill fill)
{
    KeyValueArray<MasterKeyModel> rows;
    NSArrayController<MasterKeyModel> controller(rows, serialColumn());
    QTableView table;
    controller.setTableView(&table);
    table.show();
    for (auto _ : state) {
        fill(rows);
        controller.setSelectionIndexes({});
        QApplication::processEvents();
    }
}

/// Every row through the setter.
void listRows(benchmark::State& state)
{
    measureList(state, [](KeyValueArray<MasterKeyModel>& rows) {
        rows.set({});
        for (std::uint64_t key = 1; key <= keyCount; ++key)
            rows.append(MasterKeyModel(key));
    });
}

void listRowsFloor(benchmark::State& state)
{
    measureList(state, [](KeyValueArray<MasterKeyModel>& rows) {
        std::vector<MasterKeyModel> all;
        for (std::uint64_t key = 1; key <= keyCount; ++key)
            all.emplace_back(key);
        rows.set(std::move(all));
    });
}

BENCHMARK(documentLoadAndSaveFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(documentLoadAndSave)->Unit(benchmark::kMillisecond);
BENCHMARK(listRowsFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(listRows)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const vantro::tests::TemporaryPrefix prefix;
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
