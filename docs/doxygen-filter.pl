#!/usr/bin/perl
# Doxygen input filter for the public headers: their plain C comments are
# their documentation. The head comment of a header becomes its \file page,
# a comment of its own before a declaration documents that declaration, a
# comment after code on the same line documents the code before it.
# Comments that already start with /** or /*! are left to Doxygen.
# Characters Doxygen would read as commands or markup are escaped, so the
# comments need no Doxygen syntax. Line numbers are kept.
use strict;
use warnings;

local $/;
my $text = <>;
my $seen_head = 0;

sub escape {
    my ($body) = @_;
    $body =~ s/([\\\@&\$#%<>"])/\\$1/g;
    return $body;
}

$text =~ s{(^[^\n]*?)/\*(.*?)\*/}{
    my ($before, $body) = ($1, $2);
    my $code = $before =~ /\S/;
    if ($body =~ /^[*!]/ || $before =~ /^\s*#\s*(if|ifdef|ifndef|else|elif|endif|include)\b/) {
        # Already a Doxygen comment, or a note on a preprocessor line.
        "$before/*$body*/";
    } elsif (!$seen_head && !$code) {
        $seen_head = 1;
        "$before/**" . escape($body) . " \\file */";
    } elsif ($code) {
        "$before/**<" . escape($body) . "*/";
    } else {
        "$before/**" . escape($body) . "*/";
    }
}gmse;

print $text;
