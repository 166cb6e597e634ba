#include "app/StringTableFile.h"

#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace vantro::tests {

TableTexts tableTexts(const QString& language)
{
    TableTexts texts;
    pugi::xml_document file;
    const std::string path = APP_RESOURCES "/strings/vantro_" + language.toStdString() + ".ts";
    EXPECT_TRUE(file.load_file(path.c_str(), pugi::parse_default | pugi::parse_ws_pcdata)) << path;
    for (const auto& context : file.child("TS").children("context")) {
        for (const auto& message : context.children("message")) {
            const auto translation = message.child("translation");
            TableText text{{},
                           message.attribute("numerus").value() == std::string_view("yes"),
                           translation.attribute("type").empty()};
            if (text.counts)
                for (const auto& form : translation.children("numerusform"))
                    text.forms += form.child_value();
            else
                text.forms += translation.child_value();
            const std::pair place(context.child_value("name"), message.child_value("source"));
            EXPECT_TRUE(texts.emplace(place, text).second) << "twice: " << place.first << ' ' << place.second;
        }
    }
    return texts;
}

} // namespace vantro::tests
