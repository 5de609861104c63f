// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "PanelShadow"
    width: 500
    height: 500

    Component {
        id: component
        PanelShadow {
            radius: 8
            blurRadius: 24
            color: Qt.rgba(0, 0, 0, 0.5)
        }
    }

    function make(width, height) {
        return createTemporaryObject(component, root, { width: width, height: height });
    }

    function test_it_is_full_inside_half_at_the_edge_and_nothing_outside() {
        const shadow = make(300, 260);
        compare(shadow.reach, 36);
        const picture = pictureOf(shadow);
        compare(picture.darkness(150, 130), 128);
        fuzzyCompare(picture.darkness(150, 36), 64, 4);
        fuzzyCompare(picture.darkness(36, 130), 64, 4);
        compare(picture.darkness(0, 130), 0);
        compare(picture.darkness(0, 0), 0);
    }

    function test_it_fades_without_a_step() {
        const picture = pictureOf(make(300, 260));
        for (let x = 1; x < 150; ++x) {
            const step = picture.darkness(x, 130) - picture.darkness(x - 1, 130);
            verify(step >= 0 && step <= 6, `step ${step} at ${x}`);
        }
    }

    function test_it_is_as_strong_in_a_small_item_as_it_can_be() {
        const picture = pictureOf(make(90, 90));
        verify(picture.darkness(45, 45) > 10 && picture.darkness(45, 45) < 128);
        compare(picture.darkness(30, 45), picture.darkness(59, 45));
    }

    function test_it_stretches_with_its_item() {
        const shadow = make(300, 260);
        pictureOf(shadow);
        shadow.width = 400;
        const picture = pictureOf(shadow);
        compare(picture.darkness(200, 130), 128);
        compare(picture.darkness(340, 130), picture.darkness(59, 130));
    }
}
