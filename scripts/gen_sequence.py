#!/usr/bin/env python3
"""Writes a synthetic but realistically shaped xmeml export of one edited sequence of N clip items.

The items lie over 4 video tracks: track 1 holds an unbroken cut of most of them, with a cross
dissolve at every tenth cut; tracks 2 to 4 hold fewer, shorter items over it (inserts, supers),
some disabled. Every item refers to a media file defined at its first use (reel, timecode,
logging), and carries an audio twin on audio track 1. Usage: gen_sequence.py N OUT.xml [--seed S]
"""
import random
import sys

RATE = "<rate><ntsc>FALSE</ntsc><timebase>25</timebase></rate>"


def file_element(fid, defined, rnd):
    if fid in defined:
        return f'<file id="{fid}"/>'
    defined.add(fid)
    return (f'<file id="{fid}"><name>{fid}.mov</name><pathurl>file://localhost/Volumes/Media/{fid}.mov</pathurl>'
            f"{RATE}<duration>20000</duration><timecode>{RATE}<string>0{rnd.randint(1, 9)}:00:00:00</string>"
            f"<frame>{rnd.randint(1, 9) * 90000}</frame><displayformat>NDF</displayformat>"
            f"<reel><name>A{rnd.randint(1, 99):03d}</name></reel></timecode>"
            f"<media><video><samplecharacteristics><width>1920</width><height>1080</height></samplecharacteristics></video>"
            f"<audio><channelcount>2</channelcount></audio></media></file>")


def clip_item(iid, start, end, fid, defined, rnd, enabled=True):
    length = end - start if start >= 0 and end >= 0 else 200
    first = rnd.randint(0, 5000)
    return (f'<clipitem id="{iid}"><name>{fid}</name><enabled>{"TRUE" if enabled else "FALSE"}</enabled>'
            f"<duration>20000</duration>{RATE}<start>{start}</start><end>{end}</end>"
            f"<in>{first}</in><out>{first + length}</out><masterclipid>{fid}-m</masterclipid>"
            f"{file_element(fid, defined, rnd)}"
            f"<logginginfo><scene>{rnd.randint(1, 120)}</scene><shottake>{rnd.randint(1, 9)}</shottake>"
            f"<lognote>take note</lognote></logginginfo></clipitem>")


def transition(start, end):
    return (f"<transitionitem>{RATE}<start>{start}</start><end>{end}</end><alignment>center</alignment>"
            f"<effect><name>Cross Dissolve</name><effectid>Cross Dissolve</effectid>"
            f"<effectcategory>Dissolve</effectcategory><effecttype>transition</effecttype>"
            f"<mediatype>video</mediatype></effect></transitionitem>")


def main():
    n = int(sys.argv[1])
    out = sys.argv[2]
    seed = int(sys.argv[sys.argv.index("--seed") + 1]) if "--seed" in sys.argv else 1
    rnd = random.Random(seed)
    defined = set()
    main_count = n * 7 // 10
    tracks = [[] for _ in range(4)]
    audio = []
    position = 0
    for i in range(main_count):
        length = rnd.randint(30, 250)
        fid = f"media-{rnd.randint(0, n // 3)}"
        dissolve_before = i % 10 == 9
        dissolve_after = i % 10 == 8 and i + 1 < main_count
        start = -1 if dissolve_before else position
        end = -1 if dissolve_after else position + length
        tracks[0].append(clip_item(f"v1-{i}", start, end, fid, defined, rnd))
        audio.append(f'<clipitem id="a1-{i}"><name>{fid}</name>{RATE}<start>{position}</start>'
                     f'<end>{position + length}</end><in>0</in><out>{length}</out><file id="{fid}"/></clipitem>')
        position += length
        if dissolve_after:
            tracks[0].append(transition(position - 10, position + 10))
    # The other items spread evenly over tracks 2 to 4, each within a slot of its own.
    others = n - main_count
    for i in range(others):
        track = 1 + i % 3
        slot = max(position * 3 // max(others, 1), 4)
        start = (i // 3) * slot + rnd.randint(0, slot // 4)
        length = rnd.randint(max(slot // 8, 1), max(slot // 2, 2))
        tracks[track].append(clip_item(f"v{track + 1}-{i}", start, start + length,
                                       f"media-{rnd.randint(0, n // 3)}", defined, rnd,
                                       enabled=rnd.random() > 0.1))
    with open(out, "w", encoding="utf-8") as f:
        f.write('<?xml version="1.0" encoding="UTF-8"?>\n<!DOCTYPE xmeml>\n<xmeml version="4">\n')
        f.write(f'<sequence id="cut"><name>Cut 1</name><duration>{position}</duration>{RATE}<media><video>\n')
        for items in tracks:
            f.write("<track>\n" + "\n".join(items) + "\n")
            f.write("<enabled>TRUE</enabled><locked>FALSE</locked></track>\n")
        f.write("</video><audio><track>\n" + "\n".join(audio) + "\n<enabled>TRUE</enabled></track></audio>")
        f.write("</media></sequence>\n</xmeml>\n")


if __name__ == "__main__":
    main()
