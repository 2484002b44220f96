#pragma once

#include <QtGlobal>

// A time position or duration of the editing model, in microseconds.
class MediaTime
{
public:
    constexpr MediaTime() = default;
    static constexpr MediaTime fromMicroseconds(qint64 us) { return MediaTime(us); }
    static constexpr MediaTime fromMilliseconds(qint64 ms) { return MediaTime(ms * 1000); }
    static MediaTime fromSeconds(double seconds) { return MediaTime(qRound64(seconds * 1e6)); }

    constexpr qint64 microseconds() const { return m_us; }
    constexpr qint64 milliseconds() const { return m_us / 1000; }
    constexpr double seconds() const { return double(m_us) / 1e6; }

    constexpr bool operator==(MediaTime o) const { return m_us == o.m_us; }
    constexpr bool operator!=(MediaTime o) const { return m_us != o.m_us; }
    constexpr bool operator<(MediaTime o) const { return m_us < o.m_us; }
    constexpr bool operator<=(MediaTime o) const { return m_us <= o.m_us; }
    constexpr bool operator>(MediaTime o) const { return m_us > o.m_us; }
    constexpr bool operator>=(MediaTime o) const { return m_us >= o.m_us; }
    constexpr MediaTime operator+(MediaTime o) const { return MediaTime(m_us + o.m_us); }
    constexpr MediaTime operator-(MediaTime o) const { return MediaTime(m_us - o.m_us); }

private:
    constexpr explicit MediaTime(qint64 us) : m_us(us) {}
    qint64 m_us = 0;
};
