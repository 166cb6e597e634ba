#include "Fuzzer.h"

#include "tokens/ChallengeRecord.h"

/// A record that is taken is the one that it is written as.
void vantro::fuzz::look(std::string_view bytes)
{
    if (const auto record = service::ChallengeRecord::parsed(bytes))
        expect(record->formatted() == bytes);
}
