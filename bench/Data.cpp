// The settings document and the lists against what the libraries below them need for the same data.
//
// - A document of 100,000 keys is loaded and saved. The floor: pugixml loads it into a tree, saves that, and the file
// is
//   brought to the disk.
// - 100,000 rows are stored in a list, each through the property's setter, and what the table shows of them is painted.
//   The floor: the same rows are made, and the model of the same table is reset once.

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include <QApplication>
#include <pugixml.hpp>

#include "Many.h"
#include "Measure.h"
#include "Model/KeyModels.h"
#include "VantroStandaloneSetting/SettingFile.h"
#include "appkit/NSArrayController.h"
#include "foundation/FileDescriptor.h"
#include "support/TemporaryPrefix.h"

namespace {

using namespace vantro;

constexpr std::size_t keyCount = 100'000;
constexpr int rounds = 21;

void measureDocument()
{
    SettingFile file;
    file.write(bench::documentOf(keyCount));
    const std::string path = file.url().string();
    const auto loadAndSave = [&file] { return bench::millisecondsOf([&file] { file.write(file.read().value()); }); };
    const auto floor = [&path] {
        return bench::millisecondsOf([&path] {
            pugi::xml_document document;
            document.load_file(path.c_str());
            document.save_file(path.c_str(), "  ");
            const FileDescriptor written(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
            ::fsync(written.get());
        });
    };
    bench::printRow("a document of 100,000 keys, load and save", bench::compareInTurns(rounds, loadAndSave, floor),
                    "ms", 1.5);
}

void measureList()
{
    KeyValueArray<MasterKeyModel> rows;
    NSArrayController<MasterKeyModel> controller(rows, {{QStringLiteral("Serial"), [](const MasterKeyModel& row) {
                                                             return QString::fromStdString(row.serial());
                                                         }}});
    QTableView table;
    controller.setTableView(&table);
    table.show();
    const auto untilPainted = [&controller](const auto& fill) {
        return bench::millisecondsOf([&] {
            fill();
            controller.setSelectionIndexes({});
            QApplication::processEvents();
        });
    };
    const auto eachThroughTheSetter = [&] {
        return untilPainted([&rows] {
            rows.set({});
            for (std::uint64_t key = 1; key <= keyCount; ++key)
                rows.append(MasterKeyModel(key));
        });
    };
    const auto oneReset = [&] {
        return untilPainted([&rows] {
            std::vector<MasterKeyModel> all;
            for (std::uint64_t key = 1; key <= keyCount; ++key)
                all.emplace_back(key);
            rows.set(std::move(all));
        });
    };
    bench::printRow("100,000 list rows, each through the setter",
                    bench::compareInTurns(rounds, eachThroughTheSetter, oneReset), "ms", 2);
}

} // namespace

int main(int argc, char** argv)
{
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const tests::TemporaryPrefix prefix;
    const QApplication application(argc, argv);
    return bench::run([] {
        measureDocument();
        measureList();
    });
}
