#!/usr/bin/env perl
# bill-of-materials.pl FOLDER VERSION RECIPES: what a package has inside, as SPDX 2.3 in JSON on standard output. Versions
# are those of the recipes and, for the compiler's runtime, of the installed packages; the time is SOURCE_DATE_EPOCH.
use strict;
use warnings;
use Digest::SHA;
use File::Basename qw(basename);
use File::Glob qw(:bsd_glob);  # a blank in a path parts nothing
use JSON::PP;
use POSIX qw(strftime);

my ($folder, $version, $recipes) = @ARGV;

# Name => licence that its authors give it, how it is inside, files.
my %inside = (
    openssl  => ['Apache-2.0',   'DYNAMIC_LINK', 'bin/libcrypto-3-x64.dll', 'bin/libssl-3-x64.dll'],
    curl     => ['curl',         'DYNAMIC_LINK', 'bin/libcurl.dll'],
    jsoncpp  => ['MIT',          'DYNAMIC_LINK', 'bin/libjsoncpp.dll'],
    zlib     => ['Zlib',         'STATIC_LINK'],
    brotli   => ['MIT',          'STATIC_LINK'],
    spdlog   => ['MIT',          'STATIC_LINK'],
    fmt      => ['MIT',          'STATIC_LINK'],
    cli11    => ['BSD-3-Clause', 'STATIC_LINK'],
    httplib  => ['MIT',          'STATIC_LINK'],
    'gcc-mingw-w64-x86-64-posix-runtime' => ['GPL-3.0-or-later WITH GCC-exception-3.1', 'DYNAMIC_LINK',
        'bin/libgcc_s_seh-1.dll', 'bin/libssp-0.dll', 'bin/libstdc++-6.dll'],
    'mingw-w64-x86-64-dev' => ['NOASSERTION', 'DYNAMIC_LINK', 'bin/libwinpthread-1.dll'],
);

sub contents { my ($file) = @_; open my $in, '<:raw', $file or die "$file: $!\n"; local $/; return <$in> }

sub identifier { my ($name) = @_; $name =~ s/[^A-Za-z0-9.-]/-/g; return "SPDXRef-$name" }

# Debian's package and its version: of the library as it was built, else as it is installed.
sub origin_of {
    my ($name) = @_;
    if (-f "$recipes/$name.sh") {
        my $recipe = contents("$recipes/$name.sh");
        my ($package) = $recipe =~ /^origin="\w+ (.*)"$/m;
        my ($built) = contents("$recipes/../../../build/deps/$name/version") =~ /^(\S+)/;
        return ($package, $built, $recipe =~ /_(\w+)\.deb$/m ? $1 : 'source');
    }
    chomp(my $installed = qx(dpkg-query -W -f '\${Version}' $name));
    return ($name, $installed, 'all');
}

sub package_entry {
    my ($name, $licence) = @_;
    my ($package, $built, $architecture) = origin_of($name);
    (my $escaped = $built) =~ s/([^A-Za-z0-9.~-])/sprintf '%%%02X', ord $1/ge;
    return {SPDXID => identifier($name), name => $name, versionInfo => $built, supplier => 'Organization: Debian',
            downloadLocation => 'NOASSERTION', filesAnalyzed => JSON::PP::false, licenseConcluded => 'NOASSERTION',
            licenseDeclared => $licence, copyrightText => 'NOASSERTION',
            comment => "Its copyright file is licences/$name.txt.",
            externalRefs => [{referenceCategory => 'PACKAGE-MANAGER', referenceType => 'purl',
                              referenceLocator => "pkg:deb/debian/$package\@$escaped?arch=$architecture&distro=debian-12"}]};
}

sub file_entry {
    my ($name) = @_;
    my $bytes = contents("$folder/$name");
    return {SPDXID => identifier($name), fileName => "./$name", licenseConcluded => 'NOASSERTION',
            copyrightText => 'NOASSERTION', fileTypes => ['BINARY'],
            checksums => [{algorithm => 'SHA1', checksumValue => Digest::SHA::sha1_hex($bytes)},
                          {algorithm => 'SHA256', checksumValue => Digest::SHA::sha256_hex($bytes)}]};
}

sub relation {
    my ($from, $type, $to) = @_;
    return {spdxElementId => $from, relationshipType => $type, relatedSpdxElement => $to};
}

my $product = 'SPDXRef-UserAuthService';
my @packages = ({SPDXID => $product, name => 'UserAuthService', versionInfo => $version, supplier => 'NOASSERTION',
                 downloadLocation => 'NOASSERTION', filesAnalyzed => JSON::PP::false, licenseConcluded => 'NOASSERTION',
                 licenseDeclared => 'NOASSERTION', copyrightText => 'NOASSERTION', primaryPackagePurpose => 'LIBRARY'});
my @relations = (relation('SPDXRef-DOCUMENT', 'DESCRIBES', $product));
my %origin;
for my $name (sort keys %inside) {
    my ($licence, $link, @files) = @{$inside{$name}};
    push @packages, package_entry($name, $licence);
    push @relations, relation($product, $link, identifier($name));
    $origin{$_} = $name for @files;
}

# Every image must be known: a DLL that nobody put into the table above would otherwise ship without a word.
my @images = sort map { substr $_, length($folder) + 1 } glob "$folder/{bin,sandbox}/*.{dll,exe}";
my %ours = map { $_ => 1 } qw(UserAuthService.dll ParamStore.dll HttpLib.dll Logger.dll EventAdmin.dll userauth.exe
                              ZVAccountSdk.dll sandbox-server.exe suite-conformance.exe
                              suite-conformance-points.dll);
for my $image (@images) {
    die "$image: from where? Name it in $0\n" unless $origin{$image} || $ours{basename $image};
    my $owner = $origin{$image} ? identifier($origin{$image}) : $product;
    push @relations, relation($product, 'CONTAINS', identifier($image)), relation(identifier($image), 'GENERATED_FROM', $owner);
}
my @files = map { file_entry($_) } @images;
my $sum = Digest::SHA::sha256_hex(map { $_->{checksums}[1]{checksumValue} } @files);

print JSON::PP->new->canonical->pretty->encode({
    spdxVersion => 'SPDX-2.3', dataLicense => 'CC0-1.0', SPDXID => 'SPDXRef-DOCUMENT', name => "UserAuthService-$version",
    # A name that no other document has, from what is inside: a UUID of version 8 (RFC 9562).
    documentNamespace => 'urn:uuid:' . $sum =~ s/^(.{8})(.{4}).(.{3}).(.{3})(.{12}).*/$1-$2-8$3-8$4-$5/r,
    creationInfo => {created => strftime('%Y-%m-%dT%H:%M:%SZ', gmtime($ENV{SOURCE_DATE_EPOCH} // time)),
                     creators => ['Tool: bill-of-materials.pl']},
    documentDescribes => [$product], packages => \@packages, files => \@files, relationships => \@relations});
