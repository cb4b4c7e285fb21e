#include <gtest/gtest.h>

#include "agent/Links.hpp"

namespace zelto::agent {
namespace {

TEST(Links, OfTheWidgetsAreRead) {
    using Action = AwakeLink::Action;
    const std::pair<const char*, Link> links[] = {
        {"zelto://awake?action=toggle", AwakeLink{Action::toggle}},
        {"zelto://awake?action=off", AwakeLink{Action::off}},
        {"zelto://awake?minutes=30", AwakeLink{Action::on, 30}},
        {"zelto://awake?minutes=60", AwakeLink{Action::on, 60}},
        {"zelto://awake?minutes=120", AwakeLink{Action::on, 120}},
        {"zelto://awake?minutes=0", AwakeLink{Action::on}},
        {"zelto://awake?minutes=10080", AwakeLink{Action::on, 10'080}},
        {"zelto://open?tab=home", OpenLink{"home"}},
        {"zelto://open?tab=battery", OpenLink{"battery"}},
        {"zelto://open?tab=system", OpenLink{"system"}},
        {"zelto://open?tab=fans", OpenLink{"fans"}},
        {"zelto://open?tab=calendar", OpenLink{"calendar"}},
        {"zelto://open?tab=clipboard", OpenLink{"clipboard"}},
        {"zelto://eq", EqualizerLink{}},
        {"zelto://clip?id=0B1C6E3A-9D0F-4C53-8E58-1F4A6B7C8D9E",
         ClipLink{"0B1C6E3A-9D0F-4C53-8E58-1F4A6B7C8D9E"}},
        {"zelto://join?url=https%3A%2F%2Fmeet%2Eexample%2Ecom%2Fabc%3Fa%3D1%26b%3D2%23x",
         JoinLink{"https://meet.example.com/abc?a=1&b=2#x"}},
        {"zelto://join?url=http%3A%2F%2Fexample%2Ecom", JoinLink{"http://example.com"}},
    };
    for (const auto& [text, expected] : links) {
        const auto link = parseLink(text);
        ASSERT_TRUE(link) << text << ": " << link.fault().text();
        EXPECT_EQ(*link, expected) << text;
    }
}

TEST(Links, OfAnyOtherShapeAreRefused) {
    const std::string texts[] = {
        "",
        "zelto://",
        "zelto:awake?action=off",
        "ZELTO://awake?action=off",
        " zelto://awake?action=off",
        "zelto://awake?action=off ",
        "zelto://awake",
        "zelto://awake?",
        "zelto://awake?action",
        "zelto://awake?action=on",
        "zelto://awake?action=OFF",
        "zelto://awake?minutes=",
        "zelto://awake?minutes=-1",
        "zelto://awake?minutes=+30",
        "zelto://awake?minutes=030x",
        "zelto://awake?minutes=1e3",
        "zelto://awake?minutes=10081",
        "zelto://awake?minutes=99999999999999999999",
        "zelto://awake?minutes=30&action=off",
        "zelto://awake?minutes=30#x",
        "zelto://awake/?minutes=30",
        "zelto://open?tab=equalizer",
        "zelto://open?tab=../../etc/passwd",
        "zelto://open?tab=home%00",
        "zelto://open?tab=%2e%2e",
        "zelto://open?page=home",
        "zelto://clip?id=",
        "zelto://clip?id=0B1C6E3A",
        "zelto://join?url=",
        "zelto://join?url=file%3A%2F%2F%2Fetc%2Fpasswd",
        "zelto://join?url=javascript%3Aalert(1)",
        "zelto://join?url=https%3A%2F%2F",
        "zelto://join?url=%2F%2Fexample.com",
        "zelto://join?url=https%3A%2F%2Fexample.com%ZZ",
        "zelto://join?url=zelto%3A%2F%2Fawake%3Faction%3Doff",
        "zelto://join?url=https%3A%2F%2Fexample.com%FF",
        "zelto://eq?on=1",
        "zelto://quit",
        "https://example.com/",
        "file:///etc/passwd",
        "zelto://open?tab=home\n",
        std::string("zelto://open?tab=home\0", 22),
    };
    for (const std::string& text : texts) EXPECT_FALSE(parseLink(text)) << text;
}

TEST(Links, OfEnormousSizeAreRefused) {
    EXPECT_FALSE(parseLink("zelto://join?url=https%3A%2F%2Fexample.com%2F" + std::string(longestLink, 'a')));
    EXPECT_TRUE(parseLink("zelto://join?url=https%3A%2F%2Fexample.com%2F" + std::string(4000, 'a')));
}

}  // namespace
}  // namespace zelto::agent
