#include <deque>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "products/OFX/Support/Page.h"

namespace Orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kSkipRow = kOfxParamPageSkipRow;
constexpr const char* kSkipColumn = kOfxParamPageSkipColumn;

/// A page written as a line of names; "end" and "null" are the markers, a leading '-' excludes.
struct Rows {
    explicit Rows(const std::string& names)
    {
        std::istringstream words(names);
        for (std::string name; words >> name;) {
            const bool excluded = name.front() == '-';
            OvOfxParam& entry = objects.emplace_back(excluded ? name.substr(1) : name);
            entry.excluded = excluded;
            page.children.push_back(&entry);
        }
    }
    std::vector<std::string> layout() const { return layOutPage(page.children); }

    std::deque<OvOfxParam> objects;
    OvOfxPage page{"page"};
};

TEST(PageLayout, TurnsRowsIntoColumns)
{
    EXPECT_THAT(Rows("A B end C end").layout(),
                ElementsAre("A", "C", kSkipColumn, "B", kSkipColumn));
    EXPECT_THAT(Rows("A end null B end C D end").layout(),
                ElementsAre("A", kSkipRow, "C", kSkipColumn, kSkipRow, "B", "D", kSkipColumn));
}

TEST(PageLayout, EndsAColumnWithoutEntriesAtOnce)
{
    EXPECT_THAT(Rows("null A end null end").layout(), ElementsAre(kSkipColumn, "A", kSkipColumn));
}

TEST(PageLayout, KeepsThePlaceOfAnExcludedEntry)
{
    EXPECT_THAT(Rows("-A B end C D end").layout(),
                ElementsAre(kSkipRow, "C", kSkipColumn, "B", "D", kSkipColumn));
}

TEST(PageLayout, AcceptsALastRowWithoutAnEnd)
{
    EXPECT_THAT(Rows("A end B C").layout(),
                ElementsAre("A", "B", kSkipColumn, kSkipRow, "C", kSkipColumn));
}

TEST(PageLayout, OfNoEntriesIsEmpty)
{
    EXPECT_THAT(Rows("").layout(), IsEmpty());
    EXPECT_THAT(Rows("end end").layout(), IsEmpty());
}

TEST(PageRoom, CountsClosedRowsAndEntriesWithEmptyCells)
{
    const Rows tall("A end B end C end");
    const Rows wide("A null null D end");
    const std::vector<const OvOfxPage*> pages = {&tall.page, &wide.page};
    EXPECT_TRUE(hasRoomForPages(pages, 3, 4));
    EXPECT_FALSE(hasRoomForPages(pages, 2, 4));
    EXPECT_FALSE(hasRoomForPages(pages, 3, 3));
    EXPECT_FALSE(hasRoomForPages(pages, -1, -1));  // a host that reports no counts
    EXPECT_FALSE(hasRoomForPages(pages, 0, 0));
}

}  // namespace
}  // namespace Orvane
