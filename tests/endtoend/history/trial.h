// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scene.h"
#include "step.h"
#include "testkit/machine/panelkind.h"
#include "testkit/services/brokerclient.h"

/** Tells whether a history has left a trace. */
class Trial {
public:
    /** The seed is for the order in which the fresh program hears of the last values. */
    Trial(BrokerClient *services, const PanelKind &panel, quint32 seed);

    /**
     * What a program with this history shows otherwise than a fresh one that was given the last
     * values only; empty when all is the same.
     */
    QVector<Difference> differences(const History &history) const;
    /** The same, but the fresh program is given this in addition. */
    QVector<Difference> differences(const History &history, const History &addition) const;

private:
    BrokerClient *const m_services;
    const PanelKind m_panel;
    const quint32 m_seed;
};
