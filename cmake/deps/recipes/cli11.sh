version=2.1.2+ds-1
origin="package libcli11-dev"
files="
f1f6ee9ec053e0e0bcec47345e241b6a8ee006321248b4329e9ce88d2b4b64a8  libcli11-dev_2.1.2+ds-1_all.deb
"
needs=""
minutes="seconds"

recipe() {
  mkdir -p "$prefix/include"
  cp -r package/usr/include/CLI "$prefix/include/"
}
