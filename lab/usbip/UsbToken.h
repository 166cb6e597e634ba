#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "emulation/OtpApplication.h"
#include "emulation/TokenProfile.h"
#include "usbip/Message.h"

namespace vantro::lab::usbip {

/// A token as a USB device of full speed: what it answers to control transfers. It has a keyboard's interface (0) and a
/// FIDO interface (1), whatever order the profile has. One thread at a time.
class UsbToken
{
  public:
    explicit UsbToken(TokenProfile profile) : profile_(std::move(profile)), otp_(profile_.otp) {}

    /// What a control transfer brings to the host, with the data that came from there; nothing where it stalls.
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> control(const Setup& setup,
                                                                   std::span<const std::uint8_t> data);

    /// Whether a control transfer carries a feature report, for which TokenProfile::transferTime holds.
    [[nodiscard]] static bool isFeatureReport(const Setup& setup);

    /// A finger on the token.
    void touch() { otp_.touch(OtpApplication::Clock::now()); }
    [[nodiscard]] bool isWaitingForTouch() const { return otp_.isWaitingForTouch(OtpApplication::Clock::now()); }

    /// Pulled out: nothing is left of what was under way.
    void reset() { otp_ = OtpApplication(profile_.otp); }

    [[nodiscard]] const TokenProfile& profile() const { return profile_; }

  private:
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> descriptor(const Setup& setup) const;
    [[nodiscard]] std::vector<std::uint8_t> deviceDescriptor() const;
    [[nodiscard]] std::vector<std::uint8_t> configuration() const;
    [[nodiscard]] std::vector<std::uint8_t> reportDescriptor(unsigned int interface) const;
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> classRequest(const Setup& setup,
                                                                        std::span<const std::uint8_t> data);

    TokenProfile profile_;
    OtpApplication otp_;
    std::uint8_t chosenConfiguration_ = 0;
};

} // namespace vantro::lab::usbip
