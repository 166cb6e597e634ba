#pragma once

namespace vantro::tests {

/// Moves the process's temporary files, of which emulated devices make tens of thousands, into memory where it may
/// mount that; nobody else sees it, and it goes with the process. For programs that start none of their own from there;
/// to be called in main(), before anything asks for a temporary folder and before the first thread.
void keepTemporaryFilesInMemory();

/// Ends the test program as the tool itself ends: its threads run to the very end, and nothing that they use may be
/// destroyed before them. With the address sanitizer, memory that has leaked makes it fail.
[[noreturn]] void endTests(int result);

} // namespace vantro::tests
