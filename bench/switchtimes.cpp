// SPDX-License-Identifier: GPL-3.0-or-later
#include "switchtimes.h"

#include "statistics.h"

void SwitchTimes::add(const QString &name, const Sample &sample)
{
    if (!m_names.contains(name))
        m_names.append(name);
    m_samples[name].untilComplete.append(sample.untilComplete);
    m_samples[name].neitherShown.append(sample.neitherShown);
}

SwitchTimes::Sample SwitchTimes::median(const QString &name) const
{
    const Samples &samples = m_samples.at(name);
    return { ::median(samples.untilComplete), ::median(samples.neitherShown) };
}
