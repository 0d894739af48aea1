#!/usr/bin/env perl
# check-bill.pl FILE: whether a bill of materials has the members that SPDX 2.3 requires in JSON, in the forms that it requires,
# and names nothing that is not in it. Prints what is wrong.
use strict;
use warnings;
use JSON::PP;

my %required = (
    document => {SPDXID => qr/^SPDXRef-DOCUMENT$/, spdxVersion => qr/^SPDX-2\.3$/, dataLicense => qr/^CC0-1\.0$/, name => qr/./,
                 documentNamespace => qr/^[a-z]+:[^#\s]+$/},
    creationInfo => {created => qr/^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$/, creators => qr/^(Tool|Person|Organization): ./},
    packages => {SPDXID => qr/^SPDXRef-[A-Za-z0-9.-]+$/, name => qr/./, downloadLocation => qr/./},
    files => {SPDXID => qr/^SPDXRef-[A-Za-z0-9.-]+$/, fileName => qr{^\./.}},
    checksums => {algorithm => qr/^SHA(1|256)$/, checksumValue => qr/^([0-9a-f]{40}|[0-9a-f]{64})$/},
    externalRefs => {referenceCategory => qr/^PACKAGE-MANAGER$/, referenceType => qr/^purl$/, referenceLocator => qr/^pkg:/},
    relationships => {spdxElementId => qr/./, relatedSpdxElement => qr/./,
                      relationshipType => qr/^(DESCRIBES|CONTAINS|DYNAMIC_LINK|STATIC_LINK|GENERATED_FROM)$/},
);
my $faults = 0;
sub fault { print "bill of materials: @_\n"; $faults = 1 }

sub check {
    my ($kind, $object) = @_;
    for my $member (sort keys %{$required{$kind}}) {
        my $value = $object->{$member} // '';
        $value = $value->[0] // '' if ref $value;
        fault("$kind: $member is \"$value\"") unless $value =~ $required{$kind}{$member};
    }
    for my $inner (grep { ref $object->{$_} eq 'ARRAY' && $required{$_} } sort keys %$object) {
        check($inner, $_) for @{$object->{$inner}};
    }
}

open my $in, '<', $ARGV[0] or die "$ARGV[0]: $!\n";
my $bill = JSON::PP->new->utf8->decode(do { local $/; <$in> });
check('document', $bill);
check('creationInfo', $bill->{creationInfo} // {});
my %known = ('SPDXRef-DOCUMENT' => 1);
for my $element (@{$bill->{packages}}, @{$bill->{files}}) {
    fault("$element->{SPDXID} is there twice") if $known{$element->{SPDXID}}++;
}
for my $file (@{$bill->{files}}) {
    fault("$file->{fileName} has no SHA-1") unless grep { $_->{algorithm} eq 'SHA1' } @{$file->{checksums} // []};
}
for my $name (map { ($_->{spdxElementId}, $_->{relatedSpdxElement}) } @{$bill->{relationships}}) {
    fault("$name is named and not there") unless $known{$name};
}
fault('nothing is described') unless grep { $_->{relationshipType} eq 'DESCRIBES' } @{$bill->{relationships}};
exit $faults;
