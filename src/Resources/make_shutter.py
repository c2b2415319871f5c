#!/usr/bin/env python3
"""Makes shutter.wav: two short clicks of filtered noise over a low knock, the same bytes each time."""
import math
import pathlib
import random
import struct
import wave

RATE = 22050
LENGTH = 0.14  # seconds
CLICKS = [(0.0, 0.55, 0.006), (0.055, 0.9, 0.011)]  # start, loudness, decay
KNOCK_HERTZ = 190
PEAK = 0.5


def samples():
    noise = random.Random(1)
    smoothed = 0.0
    for i in range(int(RATE * LENGTH)):
        time = i / RATE
        smoothed += 0.45 * (noise.uniform(-1, 1) - smoothed)
        value = 0.0
        for start, loudness, decay in CLICKS:
            if time >= start:
                fall = loudness * math.exp(-(time - start) / decay)
                value += fall * (smoothed + 0.35 * math.sin(2 * math.pi * KNOCK_HERTZ * (time - start)))
        yield value


def main():
    values = list(samples())
    scale = PEAK * 32767 / max(abs(value) for value in values)
    path = pathlib.Path(__file__).with_name("shutter.wav")
    with wave.open(str(path), "wb") as sound:
        sound.setnchannels(1)
        sound.setsampwidth(2)
        sound.setframerate(RATE)
        sound.writeframes(b"".join(struct.pack("<h", round(value * scale)) for value in values))


main()
