#pragma once

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <security/pam_appl.h>

#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "service/ServiceFixture.h"
#include "support/TemporaryFolder.h"

namespace vantro::tests {

struct SignedIn
{
    int code = PAM_ABORT;
    std::vector<std::string> said;
};

/// The real libpam, the real module and the real service, with virtual tokens to plug in.
class ModuleFixture : public ServiceFixture
{
  protected:
    /// Signs in through a PAM service of the module alone. `onText` is called with each text that is shown.
    SignedIn signIn(const std::string& arguments = "wait=0", const std::string& account = "root",
                    const std::function<void(const std::string&)>& onText = {},
                    const std::function<void(pam_handle_t*)>& prepare = {}, int flags = 0) const
    {
        writeFile(services_ / "try", "auth [success=done ignore=ignore default=die] " VANTRO_PAM_MODULE " " +
                                         arguments + "\nauth [default=die] pam_debug.so auth=module_unknown\n");
        return signInThrough("try", account, onText, prepare, flags);
    }

    /// Signs in through a PAM service that lies in services_. Any thread.
    SignedIn signInThrough(const char* service, const std::string& account = "root",
                           const std::function<void(const std::string&)>& onText = {},
                           const std::function<void(pam_handle_t*)>& prepare = {}, int flags = 0) const
    {
        Heard heard{{}, onText};
        const pam_conv conversation{&ModuleFixture::hear, &heard};
        pam_handle_t* pam = nullptr;
        EXPECT_EQ(::pam_start_confdir(service, account.c_str(), &conversation, services_.path().c_str(), &pam),
                  PAM_SUCCESS);
        if (prepare)
            prepare(pam);
        const int code = ::pam_authenticate(pam, flags);
        ::pam_end(pam, code);
        return {code, heard.said};
    }

    /// Registers keys for root as the tool does, with their records, and demands one of these tokens.
    void demand(const std::vector<lab::VirtualToken*>& tokens, SwitchSetting switches = {.secureMode = true})
    {
        VantroStandaloneSetting setting;
        setting.switchSetting = switches;
        auto& root = setting.users.emplace_back("root");
        for (lab::VirtualToken* const token : tokens) {
            const bool wasThere = token->isPluggedIn();
            token->plugIn();
            EXPECT_TRUE(client.createCRSettingFile(token->profile().otp.serial));
            if (!wasThere)
                token->unplug();
            root.keys.emplace_back(token->profile().otp.serial);
        }
        prefix.store(setting);
    }

    /// PAM services for libpam to read; includes in them name their files by absolute path.
    TemporaryFolder services_;

  private:
    struct Heard
    {
        std::vector<std::string> said;
        std::function<void(const std::string&)> onText;
    };

    static int hear(int count, const pam_message** messages, pam_response** responses, void* data)
    {
        auto& heard = *static_cast<Heard*>(data);
        *responses = static_cast<pam_response*>(std::calloc(static_cast<std::size_t>(count), sizeof(pam_response)));
        for (int index = 0; index < count; ++index) {
            heard.said.emplace_back(messages[index]->msg);
            if (heard.onText)
                heard.onText(heard.said.back());
        }
        return PAM_SUCCESS;
    }
};

} // namespace vantro::tests
