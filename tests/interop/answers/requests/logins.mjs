// Credentials: none, wrong ones, and those of other forms.
import {password} from '../../host.mjs';
import {envelope} from '../session.mjs';
import {operations} from './operations.mjs';

// Every operation without credentials and with wrong ones.
export async function sendWithoutLogin(session) {
    const target = '/onvif/device_service';
    for (const {prefix, name} of operations) {
        await session.send(`${prefix}:${name} without credentials`, session.request(target, envelope(`<${prefix}:${name}/>`)));
    }
    for (const {prefix, name} of operations.filter(({access}) => access === 'Login')) {
        await session.send(`${prefix}:${name} with a wrong password`, session.request(target, envelope(`<${prefix}:${name}/>`),
            {fields: ['Content-Type: application/soap+xml', session.login(target, {secret: 'wrong'})]}));
    }
}

// Other forms of credentials, and credentials that are used twice.
export async function sendCredentials(session) {
    const target = '/onvif/device_service';
    const send = (name, field) => session.send(`credentials: ${name}`,
        session.request(target, envelope('<tds:GetUsers/>'), {fields: ['Content-Type: application/soap+xml', field]}));
    const used = session.login(target);
    await send('right ones', used);
    await send('used ones', used);
    await send('of an unknown challenge', session.login(target).replace(/nonce="[^"]*/, 'nonce="unknown'));
    await send('for another algorithm', session.login(target).replace('MD5', 'SHA-256'));
    await send('for MD5-sess', session.login(target).replace('MD5', 'MD5-sess'));
    await send('for auth-int', session.login(target).replace('qop=auth', 'qop=auth-int'));
    await send('for another realm', session.login(target).replace(/realm="[^"]*/, 'realm="elsewhere'));
    await send('for another target', session.login('/elsewhere'));
    await send('without a response', session.login(target).replace(/, response=.*/, ''));
    await send('of Basic', `Authorization: Basic ${Buffer.from(`admin:${password}`).toString('base64')}`);
    await send('of an unknown scheme', 'Authorization: Bearer abc');
    await send('that cannot be parsed', 'Authorization: Digest ,,,=,"');
    await send('in lower case', session.login(target).replace('Digest', 'digest').replace('username', 'USERNAME'));
    const other = '/onvif/media_service?a=b';
    await session.ask('credentials: with a query', '<tds:GetUsers/>', {target: other});
    await session.send('credentials: without a body', session.request(target, '', {fields: ['Content-Type: application/soap+xml']}));
}

// Wrong passwords until the host refuses the address, and what it still answers then.
export async function sendGuesses(session, count) {
    const target = '/onvif/device_service';
    for (let i = 0; i < count; ++i) {
        const fields = [session.login(target, {secret: 'wrong'})];
        await session.send(`guess ${i}`, session.request(target, envelope('<tds:GetUsers/>'), {fields}));
    }
    await session.ask('right credentials after guesses', '<tds:GetUsers/>');
    await session.send('no credentials after guesses', session.request(target, envelope('<tds:GetScopes/>')));
}
