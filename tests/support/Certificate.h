// A certificate for a server of a test.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/support/TemporaryFolder.h"

namespace epgset::test {

/// The names of two PEM files.
struct CertificateFiles {
    std::string key;
    std::string certificate;
};

/// Makes a key and a certificate of 127.0.0.1 that it vouches for itself, for a day.
inline CertificateFiles makeCertificate(const TemporaryFolder& folder) {
    const CertificateFiles made{(folder.path() / "key.pem").string(),
                                (folder.path() / "certificate.pem").string()};
    const std::string command =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 1 -subj "
        "/CN=127.0.0.1 "
        "-addext subjectAltName=IP:127.0.0.1 -keyout " +
        made.key + " -out " + made.certificate + " >/dev/null 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    return made;
}

}  // namespace epgset::test
