#pragma once

namespace vantro::tests {

/// While it lives, no folder that this process writes reaches the disk: fsync() of one fails with EIO.
class FailingFolderSync
{
  public:
    FailingFolderSync();
    ~FailingFolderSync();
    FailingFolderSync(const FailingFolderSync&) = delete;
    FailingFolderSync& operator=(const FailingFolderSync&) = delete;

    /// How many files it has let reach the disk.
    [[nodiscard]] static int syncedFiles();
};

} // namespace vantro::tests
