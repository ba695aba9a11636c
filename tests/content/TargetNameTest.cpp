#include "content/TargetName.h"

#include "platform/files/TargetFolder.h"
#include "platform/system/Text.h"

#include <gtest/gtest.h>

namespace thntfs::test {

namespace {

std::string Narrow(std::size_t count, char16_t unit) { return NarrowText(std::u16string(count, unit)); }

} // namespace

TEST(TargetNameTest, HostileNames) {
    struct Case {
        std::u16string Name;
        std::string Expected;
    };
    const Case cases[] = {
        {u"plain.txt", "plain.txt"},
        {u"", "_"},
        {u".", "_"},
        {u"..", "__"},
        {u".profile", ".profile"},
        {u"../../etc/passwd", ".._.._etc_passwd"},
        {u"/etc/passwd", "_etc_passwd"},
        {u"C:\\x", "C__x"},
        {u"a*b?c\"d<e>f|g", "a_b_c_d_e_f_g"},
        {std::u16string(u"nul\0byte", 8), "nul_byte"},
        {u"line\nfeed\x1B[2J\x7F", "line_feed_[2J_"},
        {u"CON", "_CON"},
        {u"con.txt", "_con.txt"},
        {u"Aux.tar.gz", "_Aux.tar.gz"},
        {u"COM1", "_COM1"},
        {u"lpt9.log", "_lpt9.log"},
        {u"COM0", "COM0"},
        {u"COM10", "COM10"},
        {u"CONSOLE", "CONSOLE"},
        {u".th-ntfs-0123456789ab.part", "_.th-ntfs-0123456789ab.part"}, // would be taken away as a left one
        {u"film.part", "film.part"},
        {u"\u00E4\u4E2D\U0001F600", "\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x98\x80"},
        {u"\xD800x", "\xEF\xBF\xBDx"},
        {u" ", " "},
        {std::u16string(255, u'n'), std::string(255, 'n')},
        {std::u16string(255, u'\u4E2D'), Narrow(85, u'\u4E2D')},
        {std::u16string(254, u'\u4E2D') + u"x", Narrow(85, u'\u4E2D')},
        {std::u16string(251, u'\u00E4') + u".jpg", Narrow(125, u'\u00E4') + ".jpg"},
        {u"x." + std::u16string(200, u'\u4E2D'), "x." + Narrow(84, u'\u4E2D')},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(TargetName(test.Name), test.Expected);
        EXPECT_TRUE(IsPlainName(TargetName(test.Name)));
    }
}

TEST(TargetNameTest, NumberedNames) {
    EXPECT_EQ(NumberedName("photo.jpg", 2), "photo (2).jpg");
    EXPECT_EQ(NumberedName("folder", 10), "folder (10)");
    EXPECT_EQ(NumberedName(".profile", 2), ".profile (2)");
    EXPECT_EQ(NumberedName("a.b.c", 3), "a.b (3).c");
    EXPECT_EQ(NumberedName(std::string(251, 'n') + ".jpg", 4294967295U),
              std::string(238, 'n') + " (4294967295).jpg");
}

} // namespace thntfs::test
