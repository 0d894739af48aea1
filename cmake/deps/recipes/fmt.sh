version=9.1.0+ds1-2
origin="package libfmt-dev"
files="
c8fa00dd0269e6eda9fd06668df3d720de4b5a1f647dcd3c6e0ba63f0cbf2150  libfmt-dev_9.1.0+ds1-2_amd64.deb
"
needs=""
minutes="seconds"

# Header-only use, by spdlog.
recipe() {
  mkdir -p "$prefix/include"
  cp -r package/usr/include/fmt "$prefix/include/"
}
