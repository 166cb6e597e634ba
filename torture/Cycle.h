#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <sys/types.h>

#include "Faults.h"
#include "Subject.h"
#include "Victim.h"

namespace vantro::torture {

/// What was done and what was found, over all cycles.
struct Table
{
    std::uint64_t cycles = 0;
    std::uint64_t writes = 0;
    std::uint64_t kills = 0;
    std::array<std::uint64_t, callCount> faults = {};
    /// Files that are gone or an earlier one again, or would be after a loss of power.
    std::uint64_t lost = 0;
    /// Files with what nobody has written so, or with another mode or group.
    std::uint64_t mixed = 0;
    /// Operations whose answer is not what happened, or that ended the process.
    std::uint64_t answeredWrongly = 0;
    /// New files and descriptors that should be gone.
    std::uint64_t leftBehind = 0;
};

/// One round with files of its own, made anew from its seed: processes that carry out operations and are killed, each
/// a start of the product after the other, and one more to which nothing happens. After every operation all files are
/// looked at. What is wrong is counted and told on standard error.
class Cycle
{
  public:
    Cycle(const Folders& folders, std::filesystem::path document, const Logger& logger, Faults& faults,
          std::uint64_t seed, Table& table);

    void run();

  private:
    /// What the product gives a document of its own.
    static constexpr mode_t newDocumentMode = 0660;

    /// A file's content, and the number that stands for it.
    struct State
    {
        std::optional<std::string> text;
        std::uint64_t number = noContent;
    };
    struct File
    {
        std::filesystem::path path;
        State state;
        /// Nothing for a file that others have made unreadable.
        std::optional<mode_t> mode;
        std::optional<gid_t> group;
    };
    /// What an operation does to a file when it is done.
    struct Change
    {
        File* file;
        State after;
        /// Whether a failure may have done it all the same, and whether a success may not.
        bool withFailure = false;
        bool orNot = false;
    };
    struct Expectation
    {
        /// Where no call fails.
        Answer answer = Answer::Done;
        std::vector<Change> changes = {};
    };
    enum class Document
    {
        Valid,
        Missing,
        Invalid,
        Unreadable
    };
    enum class Finding
    {
        Lost,
        Mixed,
        AnsweredWrongly,
        LeftBehind
    };

    void make(File& file, State state, mode_t mode);
    void makeDocument();
    [[nodiscard]] State documentOf(std::uint64_t number) const;
    [[nodiscard]] State entryOf(std::size_t service, std::uint64_t number) const;
    [[nodiscard]] static State record(std::size_t which, std::uint64_t number);

    void liveCalmly();
    void liveUnderFaults();
    void begin(Victim& victim);
    [[nodiscard]] Operation anyOperation();
    [[nodiscard]] Operation documentOperation();
    [[nodiscard]] Expectation expected(const Operation& operation, bool isFaulty);
    [[nodiscard]] Expectation expectedEntry(const Operation& operation, bool isFaulty);
    /// Answers whether the process is still there.
    bool perform(Victim& victim, Operation operation, Victim::Kill kill = Victim::Kill::No);

    void losePower();
    void judge(const Operation& operation, const Expectation& expectation, const Victim::Result& result);
    void judgeAnswer(const Expectation& expectation, const Victim::Result& result);
    void judgeChange(const Change& change, const Victim::Result& result);
    void judgeFiles();
    void judgeFile(File& file);
    void noteDocument(const Operation& operation, const State& before, const Victim::Result& result);
    void find(Finding finding, const std::string& what);

    [[nodiscard]] std::uint64_t below(std::uint64_t count) { return random_() % count; }
    [[nodiscard]] std::size_t leftovers(std::string_view exception = "\n") const;
    [[nodiscard]] bool areSweptUnder(const Plan& plan) const;

    const Folders folders_;
    const Logger logger_;
    Faults& faults_;
    const std::uint64_t seed_;
    Table& table_;
    std::mt19937_64 random_;

    File document_;
    std::array<File, 3> services_;
    std::array<File, 3> backups_;
    std::array<File, 3> records_;
    std::array<std::string, 3> heads_;
    bool isJumpedOver_ = false;
    unsigned int odds_ = 0;
    bool hasOneFault_ = false;

    Document kind_ = Document::Valid;
    bool hasForeign_ = false;
    bool wasReadingRefused_ = false;
    bool isInvalidKept_ = false;
    /// What must lie in the document's folder under some name.
    std::vector<std::string> kept_;
    /// Every content that was whole at some time.
    std::set<std::string> whole_;
    std::uint64_t nextNumber_ = firstContent;
    std::size_t leftBefore_ = 0;
    std::string doing_;
};

} // namespace vantro::torture
