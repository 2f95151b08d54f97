#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "viewer/model/PanelPages.h"

namespace Tesseret::Viewer {
namespace {

using testing::ElementsAre;

Host::ParameterDescription parameter(const char* name, const char* type = kOfxParamTypeInteger)
{
    Host::ParameterDescription described;
    described.name = name;
    described.type = type;
    return described;
}

TEST(PanelPages, FollowThePluginsLayout)
{
    Host::ContextDescription description;
    for (const char* name : {"a", "b", "c", "hidden", "d"}) {
        description.parameters.push_back(parameter(name));
    }
    description.parameters[3].secret = true;
    description.parameters.push_back(parameter("group", kOfxParamTypeGroup));
    Host::ParameterDescription page = parameter("first", kOfxParamTypePage);
    page.label = "First";
    page.pageChildren = {"c"};
    description.parameters.push_back(page);
    page = parameter("second", kOfxParamTypePage);
    page.pageChildren = {"b", kOfxParamPageSkipRow, "hidden", "a", kOfxParamPageSkipColumn, "gone"};
    description.parameters.push_back(page);
    description.pageOrder = {"second", "gone"};

    const std::vector<PanelPage> pages = panelPages(description);
    ASSERT_EQ(pages.size(), 3u);
    EXPECT_EQ(pages[0].label, "second");
    EXPECT_THAT(pages[0].columns, ElementsAre(ElementsAre("b", "", "a")));
    EXPECT_EQ(pages[1].label, "First");
    EXPECT_THAT(pages[1].columns, ElementsAre(ElementsAre("c")));
    EXPECT_EQ(pages[2].label, "Other");
    EXPECT_THAT(pages[2].columns, ElementsAre(ElementsAre("d")));

    description.parameters.resize(3);
    EXPECT_THAT(panelPages(description).at(0).columns, ElementsAre(ElementsAre("a", "b", "c")));
    EXPECT_THAT(panelPages({}), testing::IsEmpty());
}

}  // namespace
}  // namespace Tesseret::Viewer
