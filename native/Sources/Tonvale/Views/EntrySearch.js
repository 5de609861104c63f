// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

.pragma library

/// The entry that typed letters mean, or -1. An entry may have several spellings with " / " between
/// them and one common end: "D# / Eb major" is found by "d#", "eb" and "eb m". A note that is
/// spelled out wins over one that only begins so: "e" is E, not Eb.
function indexOf(names, typed) {
    const wanted = typed.toLowerCase().trim();
    const spellings = names.map(spellingsOf);
    const exact = spellings.findIndex(list => list.some(text => text.split(" ")[0] === wanted));
    return exact >= 0 ? exact : spellings.findIndex(list => list.some(text => text.startsWith(wanted)));
}

/// Whether a spelling of an entry goes on with just these letters and blanks.
function goesOn(names, typed) {
    const wanted = typed.toLowerCase();
    return names.some(name => spellingsOf(name).some(text => text.startsWith(wanted)));
}

function spellingsOf(name) {
    const words = name.toLowerCase().split(" ");
    const end = words.slice(-1)[0];
    return words.slice(0, -1).filter(word => word !== "/").map(word => word + " " + end);
}
