// Objects in a file that later versions read
//
// Version 1 archived no port; version 2 reads its archives with the usual one.
//
// Link Zorvan::PropertyListFiles.

#include <zorvan/platform/propertylist/NSKeyedArchiver.h>
#include <zorvan/platform/propertylist/NSKeyedUnarchiver.h>

#include <iostream>

using namespace zorvan;

struct AccountOfVersion1 {
    static constexpr std::string_view archivedClassName = "Account";
    std::string name;
    void encode(NSKeyedArchiver& coder) const { coder.encode(name, "name"); }
    static AccountOfVersion1 decode(const NSKeyedUnarchiver& coder) {
        return {coder.decode<std::string>("name")};
    }
};

struct Account {
    static constexpr std::string_view archivedClassName = "Account";
    std::string name;
    std::int64_t port = 993;
    void encode(NSKeyedArchiver& coder) const {
        coder.encode(name, "name");
        coder.encode(port, "port");
    }
    static Account decode(const NSKeyedUnarchiver& coder) {
        return {coder.decode<std::string>("name"),
                coder.decodeIfPresent<std::int64_t>("port").value_or(Account().port)};
    }
};

int main() {
    for (const Data& bytes : {NSKeyedArchiver::archivedData(AccountOfVersion1{"ada"}),
                              NSKeyedArchiver::archivedData(Account{"blaise", 143}), Data()})
        try {
            const auto account = NSKeyedUnarchiver::unarchivedObject<Account>(bytes);
            std::cout << account.name << ", port " << account.port << '\n';
        } catch (const ArchiveError&) { // whatever the bytes are, nothing worse comes of them
            std::cout << "no archive of an account\n";
        }
}
