// Colour matching of strokes by the configuration file.
#include "jobfile/ColourMatching.h"
#include "jobfile/JobFixture.h"

namespace morvil::test {

namespace {

using Strings = std::vector<std::string>;

constexpr const char* kDefaults =
    "<Item0 from=\"0x00363636\" to=\"0x00363636\" color=\"0x000000FF\"/><Item1 from=\"0x00B7B7B7\" to=\"0x00B7B7B7\" color=\"0x0000FF00\"/>"
    "<Item2 from=\"0x00121212\" to=\"0x00121212\" color=\"0x00FF0000\"/><Item3 from=\"0x00818181\" to=\"0x00818181\" color=\"0x000000FF\"/>"
    "<Item4 from=\"0x00DBDBDB\" to=\"0x00DBDBDB\" color=\"0x0000FF00\"/><Item5 from=\"0x00474747\" to=\"0x00474747\" color=\"0x00FF0000\"/>"
    "<Item6 from=\"0x00525252\" to=\"0x00525252\" color=\"0x000000FF\"/><Item7 from=\"0x004C4C4C\" to=\"0x004C4C4C\" color=\"0x000000FF\"/>"
    "<Item8 from=\"0x00C6C6C6\" to=\"0x00C6C6C6\" color=\"0x0000FF00\"/><Item9 from=\"0x007F7F7F\" to=\"0x00808080\" color=\"0x0000FF00\"/>"
    "<Item10 from=\"0x001E1E1E\" to=\"0x001F1F1F\" color=\"0x00FF0000\"/><Item11 from=\"0x002A2A2A\" to=\"0x002B2B2B\" "
    "color=\"0x00FF0000\"/>";
constexpr const char* kGrey = "<GrayscaledVectors MappTo=\"0x000000FF\"/>";

class JobColours : public JobFixture {
  protected:
    static void configure(const std::string& enabled, const std::string& items, const std::string& grey = kGrey) {
        writeBytes(CMvConfig().configurationFile(), "<PrinterDriver><ColorMatching><Enabled value=\"" + enabled + "\"/>" + items + grey +
                                                        "</ColorMatching></PrinterDriver>");
    }

    std::uint32_t matched(std::uint32_t colour) {
        const std::uint32_t before = colour;
        const bool unchanged = m_matching.checkPolygonColor(colour);
        EXPECT_TRUE(!unchanged || colour == before);
        m_replaced = !unchanged;
        return colour;
    }

    ColourMatching m_matching;
    bool m_replaced = false;
};

struct Case {
    std::uint32_t colour;
    std::uint32_t expected;
};

}  // namespace

TEST_F(JobColours, without_a_configuration_only_greys_change) {
    EXPECT_EQ(matched(0x00363636), 0x000000FDU);
    EXPECT_TRUE(m_replaced);
    EXPECT_EQ(matched(0x00363637), 0x00363637U);
    EXPECT_FALSE(m_replaced);
}

TEST_F(JobColours, the_default_table) {
    configure("1", kDefaults);
    for (const Case& given :
         {Case{0x00363636, 0x000000FF}, Case{0x00B7B7B7, 0x0000FF00}, Case{0x00121212, 0x00FF0000}, Case{0x00818181, 0x000000FF},
          Case{0x00DBDBDB, 0x0000FF00}, Case{0x00474747, 0x00FF0000}, Case{0x00525252, 0x000000FF}, Case{0x004C4C4C, 0x000000FF},
          Case{0x00C6C6C6, 0x0000FF00}, Case{0x007F7F7F, 0x0000FF00}, Case{0x00808080, 0x0000FF00}, Case{0x001E1E1E, 0x00FF0000},
          Case{0x001F1F1F, 0x00FF0000}, Case{0x002A2A2A, 0x00FF0000}, Case{0x002B2B2B, 0x00FF0000},
          // within the corners of item 9, channel by channel
          Case{0x00807F7F, 0x0000FF00}, Case{0x007F807F, 0x0000FF00}, Case{0x007F7F80, 0x0000FF00},
          // every other grey
          Case{0x00646464, 0x000000FF}, Case{0x00010101, 0x000000FF}, Case{0x00FEFEFE, 0x000000FF}}) {
        EXPECT_EQ(matched(given.colour), given.expected) << std::hex << given.colour;
        EXPECT_TRUE(m_replaced) << std::hex << given.colour;
    }
    for (const std::uint32_t colour :
         {0x00000000U, 0x00FFFFFFU, 0x00FF0000U, 0x0000FF00U, 0x000000FFU, 0x00363635U, 0x007E7F7FU, 0x0081807FU}) {
        EXPECT_EQ(matched(colour), colour) << std::hex << colour;
        EXPECT_FALSE(m_replaced) << std::hex << colour;
    }
}

TEST_F(JobColours, switched_off_the_table_does_nothing_but_greys_still_change) {
    for (const char* const off : {"0", "false", "nonsense"}) {
        configure(off, "<Item0 from=\"0x00000000\" to=\"0x00FFFFFF\" color=\"0x00123456\"/>");
        EXPECT_EQ(matched(0x00363636), 0x000000FFU);
        EXPECT_EQ(matched(0x00112233), 0x00112233U);
        EXPECT_EQ(matched(0x00000000), 0x00000000U);
    }
    for (const char* const on : {"1", "true", "TRUE"}) {
        configure(on, "<Item0 from=\"0x00000000\" to=\"0x00FFFFFF\" color=\"0x00123456\"/>");
        EXPECT_EQ(matched(0x00112233), 0x00123456U);
        EXPECT_EQ(matched(0x00000000), 0x00123456U);  // black and white change only by a range
        EXPECT_EQ(matched(0x00FFFFFF), 0x00123456U);
    }
}

TEST_F(JobColours, the_later_of_overlapping_ranges_decides) {
    configure("1",
              "<Item0 from=\"0x00000000\" to=\"0x00FFFFFF\" color=\"0x00000001\"/><Item1 from=\"0x00101010\" to=\"0x00202020\" "
              "color=\"0x00000002\"/>"
              "<Item2 from=\"0x00181818\" to=\"0x00191919\" color=\"0x00000003\"/>");
    EXPECT_EQ(matched(0x00050505), 1U);
    EXPECT_EQ(matched(0x00111111), 2U);
    EXPECT_EQ(matched(0x00181918), 3U);
}

TEST_F(JobColours, a_later_range_is_compared_with_the_incoming_colour) {
    configure("1",
              "<Item0 from=\"0x00010101\" to=\"0x00010101\" color=\"0x00020202\"/><Item1 from=\"0x00020202\" to=\"0x00020202\" "
              "color=\"0x00030303\"/>");
    EXPECT_EQ(matched(0x00010101), 0x00020202U);
}

TEST_F(JobColours, a_gap_or_an_unusable_item_ends_the_walk) {
    const std::string first =
        "<Item0 from=\"0x00010101\" to=\"0x00010101\" color=\"0x00000001\"/><Item1 from=\"0x00020202\" to=\"0x00020202\" "
        "color=\"0x00000002\"/>";
    const std::string last = "<Item3 from=\"0x00030303\" to=\"0x00030303\" color=\"0x00000003\"/>";
    for (const char* const between :
         {"", "<Item2 from=\"0x00040404\" to=\"0x00040404\"/>", "<Item2 from=\"0x00040404\" color=\"0x00000004\"/>",
          "<Item2 to=\"0x00040404\" color=\"0x00000004\"/>"}) {
        configure("1", first + between + last);
        EXPECT_EQ(matched(0x00010101), 1U);
        EXPECT_EQ(matched(0x00020202), 2U);
        EXPECT_EQ(matched(0x00030303), 0x000000FFU) << between;  // only a grey like others
        EXPECT_EQ(matched(0x00040404), 0x000000FFU) << between;
    }
}

TEST_F(JobColours, a_text_that_is_no_colour_counts_as_0) {
    configure("1", "<Item0 from=\"black\" to=\"0x00000000\" color=\"0x1f\"/>");
    EXPECT_EQ(matched(0x00000000), 0U);
    EXPECT_TRUE(m_replaced);
}

TEST_F(JobColours, without_a_target_greys_become_253) {
    configure("1", kDefaults, "");
    EXPECT_EQ(matched(0x00646464), 0x000000FDU);
    EXPECT_EQ(matched(0x00363636), 0x000000FFU);
}

TEST_F(JobColours, a_change_of_the_file_counts_from_the_next_colour_on) {
    configure("1", "<Item0 from=\"0x00010101\" to=\"0x00010101\" color=\"0x00000001\"/>");
    EXPECT_EQ(matched(0x00010101), 1U);
    EXPECT_EQ(matched(0x00010101), 1U);
    configure("1", "<Item0 from=\"0x00010101\" to=\"0x00010101\" color=\"0x00000002\"/>");
    EXPECT_EQ(matched(0x00010101), 2U);
    configure("0", "");
    EXPECT_EQ(matched(0x00010101), 0xFFU);
    DeleteFileW(CMvConfig().configurationFile());
    EXPECT_EQ(matched(0x00010101), 0xFDU);
    configure("1", "<Item0 from=\"0x00010101\" to=\"0x00010101\" color=\"0x00000001\"/>");
    EXPECT_EQ(matched(0x00010101), 1U);
}

TEST_F(JobColours, logs_its_steps) {
    configure("1", kDefaults);
    clearLog();
    matched(0x00363636);
    EXPECT_EQ(messages(), (Strings{"CSpoolFile::checkPolygonColor", "CSpoolFile::checkPolygonColor finished"}));
    clearLog();
    matched(0x00646464);
    EXPECT_EQ(messages(),
              (Strings{"CSpoolFile::checkPolygonColor", "CSpoolFile::checkPolygonColor gray scaled vector found (R==100, G==100, B==100)",
                       "CSpoolFile::checkPolygonColor finished"}));
}

}  // namespace morvil::test
