// The test video: 1080p, 25 pictures and 4 Mbit a second, H.264 with a key frame every two seconds.
import {join} from 'node:path';

import {pause, readHealth, run} from './program.mjs';

export const rate = 25;
const seconds = 20;
const options = {stdio: ['pipe', 'pipe', 'inherit']};

const longSeconds = 240;

// Encodes the video and returns {once, long}: files of 20 seconds, and of four minutes of the same.
export async function makeVideo(folder) {
    const [once, long] = ['once.mkv', 'long.mkv'].map(name => join(folder, name));
    const source = ['videotestsrc', 'pattern=zone-plate', 'kx2=20', 'ky2=20', 'kt=1', `num-buffers=${seconds * rate}`, '!',
        `video/x-raw,width=1920,height=1080,framerate=${rate}/1`];
    const encoder = ['x264enc', 'bitrate=4000', 'pass=cbr', 'speed-preset=ultrafast', 'bframes=0', `key-int-max=${2 * rate}`];
    const file = ['h264parse', '!', 'matroskamux', '!', 'filesink', `location=${once}`];
    await run('gst-launch-1.0', ['-q', ...source, '!', 'videoconvert', '!', ...encoder, '!', ...file], options);
    await run('ffmpeg', ['-v', 'error', '-stream_loop', String(longSeconds / seconds - 1), '-i', once, '-c', 'copy', long], options);
    return {once, long};
}

// Waits until every channel of a host has a picture.
export async function waitForVideo(host) {
    for (const deadline = Date.now() + 60000;;) {
        const {channels} = await readHealth(host);
        if (channels.every(({state, frame_age_ms: age}) => state === 'running' && age !== null)) return;
        if (Date.now() > deadline) throw new Error(`no video: ${JSON.stringify(channels)}`);
        await pause(0.05);
    }
}
