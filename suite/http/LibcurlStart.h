#pragma once

namespace suite {

// Starts libcurl and OpenSSL so that the environment's TLS variables and OpenSSL's configuration file change nothing.
// Called once, before any other call of libcurl. False when libcurl cannot start.
bool StartLibcurl();

}  // namespace suite
