#include <gtest/gtest.h>

#include "platform/linux/InterfacesFile.h"

using namespace LinuxHost;

namespace {

// A host's file as an installer and an operator leave it: loopback, the NIC on a bridge that holds the
// management address, a second NIC of its own, comments throughout.
const std::string kFile =
    "# The loopback network interface\n"
    "auto lo\n"
    "iface lo inet loopback\n"
    "\n"
    "# The management network\n"
    "auto br0 ens4 eth9\n"
    "allow-hotplug ens3\n"
    "iface ens3 inet manual\n"
    "iface br0 inet static\n"
    "    address 10.20.30.41/24\n"
    "    gateway 10.20.30.1\n"
    "    bridge_ports ens3 \\\n"
    "                 ens5\n"
    "    # the switch's spanning tree is off\n"
    "    bridge_stp off\n"
    "iface br0 inet6 auto\n"
    "\n"
    "iface ens4 inet dhcp\n"
    "source /etc/network/interfaces.d/*\n";

}  // namespace

TEST(InterfacesFile, TellsWhetherItConfiguresAnyOfTheNames) {
    const struct {
        std::set<std::string> names;
        bool configures;
    } cases[] = {
        {{"br0"}, true},           // an iface stanza
        {{"ens3"}, true},          // allow-hotplug and a manual stanza
        {{"ens5"}, false},         // only an option's value: the bridge's stanza configures it, not its own
        {{"eth9"}, false},         // only on an auto line: its stanza is in another file
        {{"ens6", "ens4"}, true},  // any of the names
        {{"address"}, false},      // a word of an option line is no interface
        {{"interfaces.d/*"}, false},
        {{}, false},
    };
    for (const auto& c : cases) {
        std::string names;
        for (const std::string& name : c.names) names += name + " ";
        EXPECT_EQ(InterfacesFile::Configures(kFile, c.names), c.configures) << names;
    }
    EXPECT_FALSE(InterfacesFile::Configures("", {"br0"}));
    // A commented-out stanza configures nothing.
    EXPECT_FALSE(InterfacesFile::Configures("#iface br0 inet dhcp\n# auto br0\n", {"br0"}));
}

TEST(InterfacesFile, WithoutTheNamesKeepsEverythingElseByteForByte) {
    EXPECT_EQ(InterfacesFile::Without(kFile, {"br0", "ens3"}),
              "# The loopback network interface\n"
              "auto lo\n"
              "iface lo inet loopback\n"
              "\n"
              "# The management network\n"
              "auto ens4 eth9\n"
              "    # the switch's spanning tree is off\n"
              "\n"
              "iface ens4 inet dhcp\n"
              "source /etc/network/interfaces.d/*\n");
    // Names it does not configure: the file comes back as it was.
    EXPECT_EQ(InterfacesFile::Without(kFile, {"ens9"}), kFile);
    EXPECT_EQ(InterfacesFile::Without(kFile, {}), kFile);
}

TEST(InterfacesFile, ListsLoseOnlyTheNamesAndGoWhenEmpty) {
    const struct {
        std::string text;
        std::string without;
    } cases[] = {
        {"auto eth0\n", ""},
        {"auto lo eth0 eth1\n", "auto lo eth1\n"},
        {"  allow-hotplug eth0 eth1\n", "  allow-hotplug eth1\n"},
        {"no-auto-down eth0\nno-scripts eth1 eth0\n", "no-scripts eth1\n"},
        // A list continued over two lines is one line afterwards.
        {"auto lo \\\n  eth0 eth1\n", "auto lo eth1\n"},
        // Windows line ends and a last line without one.
        {"auto eth1\r\niface eth0 inet dhcp\r\n  hostname x\r\niface eth1 inet dhcp",
         "auto eth1\r\niface eth1 inet dhcp"},
        // A comment's backslash continues nothing.
        {"# see below \\\nauto eth0\n", "# see below \\\n"},
        // A stanza ends at the next stanza of any kind, mapping and source included.
        {"iface eth0 inet dhcp\nmapping eth1\n  script /x\n", "mapping eth1\n  script /x\n"},
        {"iface eth0 inet static\n address 10.0.0.2/24\nsource-directory /etc/network/x\n",
         "source-directory /etc/network/x\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(InterfacesFile::Without(c.text, {"eth0"}), c.without) << c.text;
}
