#include "tests/set/document/DocumentFixture.h"

namespace epgset {
namespace {

using XmlDocument = DocumentFixture;

TEST_F(XmlDocument, OfNoMembersIsAnEmptyResponse) {
    EXPECT_EQ(xml(), "<response/>");
}

TEST_F(XmlDocument, NamesElementsByTheirKeys) {
    TARNO_rdoc_add_UTF8(root(), "name", "One");
    TARNO_rdoc_add_integer(root(), "items_total", -2);
    TARNO_rdoc_add_boolean(root(), "scrambled", "true");
    TARNO_rdoc_add_boolean(root(), "hd", "maybe");
    EXPECT_EQ(xml(),
              "<response><name>One</name><items_total>-2</items_total><scrambled>true</scrambled>"
              "<hd>false</hd></response>");
}

TEST_F(XmlDocument, NamesUnnamedElementsItem) {
    void* items = attached(root(), "items");
    TARNO_rdoc_add_UTF8(attached(items, nullptr), "id", "1");
    TARNO_rdoc_add_UTF8(items, nullptr, "two");
    EXPECT_EQ(xml(), "<response><items><item><id>1</id></item><item>two</item></items></response>");
}

TEST_F(XmlDocument, PrintsMembersWithoutContentAsEmptyElements) {
    TARNO_rdoc_add_UTF8(root(), "none", nullptr);
    TARNO_rdoc_add_UTF8(root(), "empty", "");
    attached(root(), "items");
    EXPECT_EQ(xml(), "<response><none/><empty/><items/></response>");
}

TEST_F(XmlDocument, PutsAKeyThatIsNoNameIntoAnAttribute) {
    for (const char* key : {"count(*)", "1st", "", "a b", "ns:name", "-x", "<&\"'>", "a\nb"}) {
        TARNO_rdoc_add_UTF8(root(), key, "x");
    }
    EXPECT_EQ(xml(),
              "<response><member name=\"count(*)\">x</member><member name=\"1st\">x</member>"
              "<member name=\"\">x</member><member name=\"a b\">x</member><member name=\"ns:name\">x</member>"
              "<member name=\"-x\">x</member><member name=\"&lt;&amp;&quot;'&gt;\">x</member>"
              "<member name=\"a&#10;b\">x</member></response>");
}

TEST_F(XmlDocument, PutsTheKeyOfAnObjectOrANullIntoAnAttributeToo) {
    TARNO_rdoc_add_integer(attached(root(), "a b"), "n", 1);
    TARNO_rdoc_add_UTF8(root(), "c d", nullptr);
    EXPECT_EQ(xml(), "<response><member name=\"a b\"><n>1</n></member><member name=\"c d\"/></response>");
}

TEST_F(XmlDocument, TakesNamesOfAnyScript) {
    TARNO_rdoc_add_UTF8(root(), "\xCF\x80\xCE\xB1", "x");
    EXPECT_EQ(xml(), "<response><\xCF\x80\xCE\xB1>x</\xCF\x80\xCE\xB1></response>");
}

TEST_F(XmlDocument, EscapesMarkupAndACarriageReturn) {
    TARNO_rdoc_add_UTF8(root(), "t", "a<b>&c ]]> \r\n\t\"");
    EXPECT_EQ(xml(), "<response><t>a&lt;b&gt;&amp;c ]]&gt; &#13;\n\t&quot;</t></response>");
}

TEST_F(XmlDocument, ReplacesInvalidBytesAndCharactersThatXmlForbids) {
    TARNO_rdoc_add_UTF8(root(), "t", "a\x80 b\x01 c\xEF\xBF\xBE");
    TARNO_rdoc_add_UTF8(root(), "k\xFF", "x");
    EXPECT_EQ(xml(),
              "<response><t>a\xEF\xBF\xBD b\xEF\xBF\xBD c\xEF\xBF\xBD</t>"
              "<member name=\"k&#xFFFD;\">x</member></response>");
}

}  // namespace
}  // namespace epgset
