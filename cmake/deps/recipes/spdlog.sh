version=1:1.10.0+ds-0.4
origin="package libspdlog-dev"
files="
4e19d647fe9bc9ec6a1fae81be00a69b1796b41660e8a7a4cf567264b463dcfb  libspdlog-dev_1%3a1.10.0+ds-0.4_amd64.deb
"
needs=""
minutes="seconds"

# Header-only use, on fmt beside it: the distribution's spdlog is patched to look for fmt outside.
recipe() {
  mkdir -p "$prefix/include"
  cp -r package/usr/include/spdlog "$prefix/include/"
}
